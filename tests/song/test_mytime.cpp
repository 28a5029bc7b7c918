// The time field that runs the clock of a show without a song.
#include "song/mytime.h"

#include <QSignalSpy>
#include <QtTest>

#include <algorithm>
#include <ctime>

namespace {

int ms(const QTime &time)
{
    return QTime(0, 0).msecsTo(time);
}

} // namespace

class TestMyTime : public QObject
{
    Q_OBJECT

private slots:
    void restartMakesATimeThePresent()
    {
        myTime field;
        QCOMPARE(field.displayFormat(), QStringLiteral("mm:ss.zzz"));
        QCOMPARE(field.buttonSymbols(), QAbstractSpinBox::NoButtons);
        QSignalSpy told(&field, &myTime::timer_timeout);
        field.restartClock(QTime(0, 1, 2, 345));
        QCOMPARE(field.time(), QTime(0, 1, 2, 345));
        QCOMPARE(field.text(), QStringLiteral("01:02.345"));
        QCOMPARE(told.size(), 1);
        QCOMPARE(told.first().first().toLongLong(), 62345LL);
        QVERIFY(!field.clockTimer->isActive());

        field.restartClock(QTime()); // a null time counts as 0
        QCOMPARE(field.time(), QTime(0, 0));
        QCOMPARE(told.at(1).first().toLongLong(), 0LL);
    }

    // Looked at from outside, at moments of its own: never more than 10 ms behind the wall clock, save where this
    // machine had no time for us, which the median forgives.
    void theClockKeepsUpAndLeavesTheCoreAlone()
    {
        myTime field;
        field.show();
        QVERIFY(QTest::qWaitForWindowExposed(&field));
        QSignalSpy told(&field, &myTime::timer_timeout);
        field.restartClock(QTime(0, 1));
        const QTime begin = QTime::currentTime();
        field.clockTimer->start();
        const std::clock_t cpuBefore = std::clock();

        QVector<int> lags;
        QTimer probe;
        probe.setTimerType(Qt::PreciseTimer);
        connect(&probe, &QTimer::timeout, &probe,
                [&] { lags << 60000 + begin.msecsTo(QTime::currentTime()) - ms(field.time()); });
        probe.start(7);
        QTRY_VERIFY(begin.msecsTo(QTime::currentTime()) >= 1500);
        const int run = begin.msecsTo(QTime::currentTime());
        const double cpuMs = 1000.0 * double(std::clock() - cpuBefore) / CLOCKS_PER_SEC;
        field.clockTimer->stop();

        std::sort(lags.begin(), lags.end());
        QVERIFY(lags.size() > 20);
        QVERIFY2(lags.first() >= -1, "the clock ran ahead");
        QVERIFY2(lags.at(lags.size() / 2) <= 10, qPrintable(QString::number(lags.at(lags.size() / 2))));
        QVERIFY2(told.size() >= run / 20, qPrintable(QString::number(told.size())));
        QVERIFY2(cpuMs < run * 0.5, qPrintable(QString::number(cpuMs)));
        QCOMPARE(told.last().first().toLongLong(), qlonglong(ms(field.time())));
    }
};

QTEST_MAIN(TestMyTime)
#include "test_mytime.moc"
