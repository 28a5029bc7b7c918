#include "showtest.h"

#include "preview/mygl.h"
#include "support/samples.h"
#include "timeline/indicator.h"
#include "timeline/timeline.h"
#include "timeline/timelineheaders.h"
#include "timeline/timelineitem.h"
#include "ui_mainwindow.h"

#include <QClipboard>
#include <QScrollBar>
#include <QtTest>

void ShowTest::init()
{
    WindowTest::init();
    mouse.reset(new MouseDriver(window.data()));
    ruler = ui->timeline_headers;
    head = ruler->indicator;
    bar = ui->timeline_scroll->horizontalScrollBar();
    QGuiApplication::clipboard()->clear();
    ui->GLWidget->repaintTimer.stop(); // a picture of the preview is of no interest here
    QTRY_VERIFY(current()->isVisible() && current()->width() == 30000);
}

Timeline *ShowTest::addTrack()
{
    window->on_timeline_add_clicked();
    Timeline *track = current();
    const QWidget *last = ui->timeline_layout->itemAt(ui->timeline_layout->count() - 1)->widget();
    // The rows gather at the bottom of their pane.
    const auto settled = [&] {
        return track->isVisible() && track->width() == 30000 &&
               last->geometry().bottom() == last->parentWidget()->rect().bottom();
    };
    if (!QTest::qWaitFor(settled))
        QTest::qFail("the track finds its row", __FILE__, __LINE__);
    return track;
}

TimelineItem *ShowTest::add(Timeline *track, int startMs, int endMs, const QString &settings)
{
    auto *item = new TimelineItem(patternBlob(settings, startMs, endMs - startMs), track);
    track->addTimelineItem(item);
    return item;
}

TimelineItem *ShowTest::addAll(const QString &spans)
{
    const int before = current()->items.size();
    const QStringList times = spans.split(' ');
    for (const QString &span : times)
        add(current(), span.section('-', 0, 0).toInt(), span.section('-', 1).toInt());
    return current()->items.at(before);
}

QString ShowTest::spans(const Timeline *track)
{
    QStringList texts;
    for (const TimelineItem *item : track->items)
        texts << QString("%1-%2").arg(glow::msOf(item->startTime)).arg(glow::msOf(item->endTime));
    return texts.join(' ');
}

MouseDriver::Step ShowTest::on(Timeline *track, int x, const std::function<void()> &check)
{
    return {track, QPoint(x, 27), check};
}

bool ShowTest::drag(TimelineItem *item, int x, const QVector<MouseDriver::Step> &steps)
{
    return mouse->drag(item, QPoint(x, 22), steps); // the same height as that of the steps
}

void ShowTest::press(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    QTest::keyClick(window->windowHandle(), key, modifiers);
}
