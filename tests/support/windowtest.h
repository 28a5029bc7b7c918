// A test of the real window: each function starts with a fresh one, on settings, folders and an empty show of its own.
// What nearly every such test names comes with it.
#pragma once

#include "app/mainwindow.h"
#include "support/dialogdriver.h"
#include "support/samples.h"
#include "support/testenv.h"
#include "support/windowcheck.h"
#include "timeline/indicator.h"
#include "timeline/timeline.h"
#include "timeline/timelineheaders.h"
#include "timeline/timelineitem.h"
#include "ui_mainwindow.h"

#include <QtTest>

class WindowTest : public QObject
{
    Q_OBJECT

protected slots: // not private, or they would run as tests of their own
    void init();
    void cleanup(); // checks the whole window before it goes

protected:
    // A pattern on the current track, placed as it is.
    TimelineItem *add(const QByteArray &blob);

    // The times of a track's patterns in list order, "0-1000 2000-3000".
    static QString spans(const Timeline *track);

    QScopedPointer<TestEnv> env;
    QScopedPointer<MainWindow> window;
    Ui::MainWindow *ui = nullptr;
};
