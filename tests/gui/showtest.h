// The real window on an empty show, with a mouse: what the tests of gestures and tracks build upon.
#pragma once

#include "mousedriver.h"
#include "preview/mygl.h"
#include "support/windowtest.h"

#include <QClipboard>
#include <QScrollBar>

class ShowTest : public WindowTest
{
    Q_OBJECT

protected slots:
    // Returns when the track stands in its row.
    void init()
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

protected:
    using Steps = QVector<MouseDriver::Step>;

    Timeline *current() const { return window->currentTimeline; }

    // A track above the present ones' top row; returns when it stands in its row.
    Timeline *addTrack()
    {
        window->on_timeline_add_clicked();
        const QWidget *last = ui->timeline_layout->itemAt(ui->timeline_layout->count() - 1)->widget();
        // The rows gather at the bottom of their pane.
        const auto settled = [&] {
            return current()->isVisible() && current()->width() == 30000 &&
                   last->geometry().bottom() == last->parentWidget()->rect().bottom();
        };
        if (!QTest::qWaitFor(settled))
            QTest::qFail("the track finds its row", __FILE__, __LINE__);
        return current();
    }

    // A colour pattern, placed as it is.
    static TimelineItem *add(Timeline *track, int startMs, int endMs, const QString &settings = "1?#ff0000")
    {
        auto *item = new TimelineItem(patternBlob(settings, startMs, endMs - startMs), track);
        track->addTimelineItem(item);
        return item;
    }

    // Patterns at the given times, "0-1000 2000-3000", on the current track. Returns the first.
    TimelineItem *addAll(const QString &spans)
    {
        const int before = current()->items.size();
        for (const QString &span : spans.split(' '))
            add(current(), span.section('-', 0, 0).toInt(), span.section('-', 1).toInt());
        return current()->items.at(before);
    }

    // A point of the current track, or of another one, at the height of an item's middle: a step of a drag.
    MouseDriver::Step to(int x, const std::function<void()> &check = {}) const { return on(current(), x, check); }
    static MouseDriver::Step on(Timeline *track, int x, const std::function<void()> &check = {})
    {
        return {track, QPoint(x, 27), check};
    }

    // A gesture that begins at x of an item, at the same height as the steps.
    bool drag(TimelineItem *item, int x, const Steps &steps) { return mouse->drag(item, QPoint(x, 22), steps); }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) // and release
    {
        QTest::keyClick(window->windowHandle(), key, modifiers);
    }

    QScopedPointer<MouseDriver> mouse;
    TimelineHeaders *ruler = nullptr;
    Indicator *head = nullptr;
    QScrollBar *bar = nullptr; // the horizontal one of the timeline
};
