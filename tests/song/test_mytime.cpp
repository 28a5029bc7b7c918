// The time field that runs the clock of a show without a song.
#include "song/mytime.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QtTest>

#include <ctime>

class TestMyTime : public QObject
{
    Q_OBJECT

private slots:
    void restartMakesATimeThePresent()
    {
        myTime field;
        QSignalSpy told(&field, &myTime::timer_timeout);
        field.restartClock(QTime(0, 1, 2, 345));
        QCOMPARE(field.clockBase, QTime(0, 1, 2, 345));
        QCOMPARE(field.text(), QString("01:02.345"));
        QCOMPARE(told.value(0).value(0).toLongLong(), 62345LL);
        QVERIFY(!field.clockTimer->isActive());
        field.restartClock(QTime()); // a null time counts as 0
        QCOMPARE(field.time(), QTime(0, 0));
        QCOMPARE(told.value(1).value(0).toLongLong(), 0LL);

        // The time is the base and what the wall clock has gone on since, however often it was asked meanwhile.
        field.clockBase = QTime(0, 2);
        field.clockStartStamp = QTime::currentTime().msecsSinceStartOfDay() - 5000;
        field.on_timer_update();
        const qlonglong ms = told.value(2).value(0).toLongLong();
        QVERIFY2(ms >= 125000 && ms < 126000, qPrintable(QString::number(ms)));
        QCOMPARE(field.time(), QTime::fromMSecsSinceStartOfDay(static_cast<int>(ms)));
    }

    void theClockKeepsUpAndLeavesTheCoreAlone()
    {
        myTime field;
        QVERIFY(field.clockTimer->interval() > 0 && field.clockTimer->interval() <= 10);
        field.show();
        QVERIFY(QTest::qWaitForWindowExposed(&field));
        int told = 0;
        int off = 0;
        field.restartClock(QTime(0, 1));
        QElapsedTimer wall;
        wall.start();
        connect(&field, &myTime::timer_timeout, this, [&](qlonglong ms) {
            ++told;
            off += qAbs(60000 + wall.elapsed() - ms) > 10 ? 1 : 0;
        });
        const std::clock_t cpuBefore = std::clock();
        field.clockTimer->start();
        QTRY_VERIFY_WITH_TIMEOUT(told >= 150, 20000);
        const double cpuMs = 1000.0 * double(std::clock() - cpuBefore) / CLOCKS_PER_SEC;
        QVERIFY2(off <= 15, qPrintable(QString::number(off))); // now and then this process had to wait in between
        QVERIFY2(cpuMs < double(wall.elapsed()) * 0.5, qPrintable(QString::number(cpuMs)));
    }
};

QTEST_MAIN(TestMyTime)
#include "test_mytime.moc"
