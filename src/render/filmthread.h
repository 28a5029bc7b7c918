// Makes a film while the window goes on; holds nothing but values.
#pragma once

#include "show/film/makefilm.h"

#include <QThread>

#include <atomic>

class FilmThread : public QThread
{
    Q_OBJECT

public:
    explicit FilmThread(glow::FilmPlan plan);
    ~FilmThread() override; // cancels and waits

    // The film ends soon, and nothing of it stays.
    void cancel() { cancelled = true; }

    glow::FilmResult result; // once the thread has finished

signals:
    void progressed(int done, int total, int leftMs); // frames; the time is a guess

protected:
    void run() override;

private:
    const glow::FilmPlan plan;
    std::atomic<bool> cancelled{false};
};
