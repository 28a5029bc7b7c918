// The time field that runs the clock of a show without a song.
#include "song/mytime.h"

#include <QSignalSpy>
#include <QtTest>

class TestMyTime : public QObject
{
    Q_OBJECT

private slots:
    void runsByTheWallClock()
    {
        myTime field;
        QSignalSpy told(&field, &myTime::timer_timeout);
        const auto lastTold = [&told] { return told.last().value(0).toLongLong(); };
        field.restartClock(QTime(0, 1, 2, 345));
        QCOMPARE(field.clockBase, QTime(0, 1, 2, 345));
        QCOMPARE(field.text(), QString("01:02.345"));
        QCOMPARE(lastTold(), 62345LL);
        QVERIFY(!field.clockTimer->isActive());
        field.restartClock(QTime()); // a null time counts as 0
        QCOMPARE(field.time(), QTime(0, 0));
        QCOMPARE(lastTold(), 0LL);

        // The time is the base and what the wall clock has gone on since, however often it was asked meanwhile. Asked
        // often enough to keep up, and seldom enough to leave the core alone.
        QVERIFY(field.clockTimer->interval() > 0 && field.clockTimer->interval() <= 10);
        field.clockBase = QTime(0, 2);
        field.clockStartStamp = QTime::currentTime().msecsSinceStartOfDay() - 5000;
        field.clockTimer->start();
        QTRY_VERIFY(told.count() >= 12);
        QVERIFY2(lastTold() >= 125000 && lastTold() < 126000, qPrintable(QString::number(lastTold())));
        QCOMPARE(field.time(), QTime::fromMSecsSinceStartOfDay(int(lastTold())));
    }
};

QTEST_MAIN(TestMyTime)
#include "test_mytime.moc"
