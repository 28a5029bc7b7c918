#include "render/filmthread.h"

#include <utility>

FilmThread::FilmThread(glow::FilmPlan filmPlan)
    : plan(std::move(filmPlan))
{
}

FilmThread::~FilmThread()
{
    cancel();
    wait();
}

void FilmThread::run()
{
    int told = -1;
    result = glow::makeFilm(plan, [this, &told](const glow::FilmProgress &now) {
        if (now.done != told) {
            told = now.done;
            emit progressed(now.done, now.total, static_cast<int>(now.leftMs));
        }
        return !cancelled;
    });
}
