#include "forms/timeleftlabel.h"

#include "show/base/timeleft.h"

#include <QLayout>
#include <QStatusBar>

TimeLeftLabel::TimeLeftLabel(QStatusBar *bar)
    : QLabel(bar)
{
    setObjectName(QStringLiteral("timeLeft"));
    bar->addPermanentWidget(this);
    hide();
}

void TimeLeftLabel::follow(Job job, double share)
{
    Course &course = courses[job];
    if (!course.clock.isValid() || share < course.share) {
        course.clock.start();
    }
    course.share = share;
    shown = job;
    const std::optional<int> seconds = glow::secondsLeft(course.clock.elapsed(), share);
    say(seconds.has_value() ? glow::timeLeftText(*seconds) : QString());
}

void TimeLeftLabel::end(Job job)
{
    courses[job].clock.invalidate();
    if (job == shown) {
        say(QString());
    }
}

void TimeLeftLabel::say(const QString &content)
{
    if (content == text()) {
        return;
    }
    setText(content);
    setVisible(!content.isEmpty());
    parentWidget()->layout()->activate();
    parentWidget()->repaint();
}
