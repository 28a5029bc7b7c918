// How long the work in hand will still take, at the right end of the status line; empty and hidden as long as nothing
// is under way or it cannot be told.
#pragma once

#include <QElapsedTimer>
#include <QLabel>

#include <array>

class QStatusBar;

class TimeLeftLabel : public QLabel
{
public:
    enum Job { Opening, Song, Conversion, Packing, Upload, jobCount };

    explicit TimeLeftLabel(QStatusBar *bar);

    // So much of the job is done, 0 to 1; less than before begins it anew. Paints itself at once, so that it is of use
    // where the window stands still meanwhile.
    void follow(Job job, double share);

    // The job is over, however it went.
    void end(Job job);

private:
    struct Course
    {
        QElapsedTimer clock; // invalid while the job is not under way
        double share = 0;
    };
    void say(const QString &text);

    std::array<Course, jobCount> courses;
    Job shown = Opening;
};
