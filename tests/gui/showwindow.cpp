#include "showwindow.h"

#include "preview/mygl.h"
#include "timeline/timeline.h"
#include "timeline/timelineitem.h"
#include "ui_mainwindow.h"

#include <QScrollBar>
#include <QtTest>

ShowWindow::ShowWindow()
    : ui(window.ui)
    , mouse(&window)
{
    ui->GLWidget->repaintTimer.stop(); // a picture of the preview is of no interest here
    window.show();
}

bool ShowWindow::renew()
{
    mouse.escapes = false;
    window.resetDocument();
    window.updateStatus();
    ui->timeline_max->setTime(QTime(0, 5));
    ui->timeline_scaler->setValue(80);
    ui->timeline_scroll->horizontalScrollBar()->setValue(0);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    if (!QTest::qWaitFor([this] { return current()->isVisible() && current()->width() == 30000; })) {
        return false;
    }
    // Without a window manager a dialog of the test before has left no window active.
    window.activateWindow();
    return QTest::qWaitForWindowActive(&window);
}

Timeline *ShowWindow::addTrack()
{
    window.on_timeline_add_clicked();
    Timeline *track = current();
    const auto bottomOf = [](const Timeline *one) { return one->y() + one->height(); };
    const Timeline *last = nullptr;
    for (int row = 1; row < ui->timeline_layout->count(); ++row) {
        if (auto *one = qobject_cast<Timeline *>(ui->timeline_layout->itemAt(row)->widget())) {
            last = one;
        }
    }
    // The rows gather at the bottom of their pane.
    const auto settled = [&] {
        return track->isVisible() && track->width() == 30000 && bottomOf(last) == last->parentWidget()->height();
    };
    return QTest::qWaitFor(settled) ? track : nullptr;
}

TimelineItem *ShowWindow::add(Timeline *track, int startMs, int endMs, const QString &settings)
{
    glow::PatternRecord record;
    record.thumbnail = QPixmap(85, 85);
    record.thumbnail.fill(Qt::red);
    record.startTime = glow::timeOf(startMs);
    record.endTime = glow::timeOf(endMs);
    record.solidColor = Qt::red;
    record.repeatCount = 1;
    record.patternKind = glow::ColourPattern;
    record.settingsText = settings;
    auto *item = new TimelineItem(glow::writePattern(record), track);
    track->addTimelineItem(item);
    return item;
}

QString ShowWindow::spans(const Timeline *track)
{
    QStringList texts;
    for (const TimelineItem *item : track->items) {
        texts << QStringLiteral("%1-%2").arg(glow::msOf(item->startTime)).arg(glow::msOf(item->endTime));
    }
    return texts.join(QLatin1Char(' '));
}
