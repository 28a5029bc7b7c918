#include "support/windowtest.h"

#include "show/model/timescale.h"

#include <QtTest>

void WindowTest::init()
{
    window.reset(); // of a test before that failed in its clean-up
    env.reset();
    env.reset(new TestEnv);
    msPerPixel = 10.0F;
    window.reset(new MainWindow);
    ui = window->ui;
    window->show();
    // Without a window manager a dialog of the test before has left no window active.
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window.data()));
}

void WindowTest::cleanup()
{
    if (!window.isNull()) {
        QTRY_COMPARE(whatIsWrong(*window), QString());
    }
    window.reset();
    env.reset();
}

TimelineItem *WindowTest::add(const QByteArray &blob)
{
    auto *item = new TimelineItem(blob, window->currentTimeline);
    window->currentTimeline->addTimelineItem(item);
    return item;
}

QString WindowTest::spans(const Timeline *track)
{
    QStringList texts;
    for (const TimelineItem *item : track->items) {
        texts << QStringLiteral("%1-%2").arg(glow::msOf(item->startTime)).arg(glow::msOf(item->endTime));
    }
    return texts.join(u' ');
}
