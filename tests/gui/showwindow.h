// The real window on a fresh, empty show, with a mouse: what the tests of gestures and tracks start from.
#pragma once

#include "app/mainwindow.h"
#include "mousedriver.h"
#include "support/testenv.h"

#include <QString>

namespace Ui {
class MainWindow;
}

class Timeline;
class TimelineItem;

class ShowWindow
{
public:
    ShowWindow();

    // An empty show at the default zoom and length; the window is active and laid out afterwards.
    bool renew();

    // A track above the present ones' top row; returns when it stands in its row.
    Timeline *addTrack();

    Timeline *current() const { return window.currentTimeline; }

    // A colour pattern, placed as it is.
    static TimelineItem *add(Timeline *track, int startMs, int endMs,
                             const QString &settings = QStringLiteral("1?#ff0000"));

    // The items' times in list order: "0-1000 2000-3000".
    static QString spans(const Timeline *track);

private:
    TestEnv env;

public:
    MainWindow window;
    Ui::MainWindow *ui;
    MouseDriver mouse;
};
