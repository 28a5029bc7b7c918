// Makes a film's file out of a plan.
#pragma once

#include "show/film/filmplan.h"

#include <QString>

#include <functional>

namespace glow {

struct FilmProgress
{
    int done = 0; // frames
    int total = 0;
    qint64 leftMs = 0; // guessed from the time that the frames so far took
};

struct FilmResult
{
    FilmError error = FilmError::None;
    QString detail; // what filmErrorText wants, such as ffmpeg's last words
};

// Blocks until the film is whole; meant for a thread of its own where somebody waits. progress hears how far it is,
// before each frame and while ffmpeg finishes, and ends everything by answering false.
//
// The film grows in a hidden file beside its goal, ".NAME.glowsmith-film", and takes the goal's name when it is whole:
// whatever happens, there is never a part of a film under that name, and an older file stays. Hidden files that a
// killed program has left in the folder are removed. A .png is one frame and needs no ffmpeg.
FilmResult makeFilm(const FilmPlan &plan, const std::function<bool(const FilmProgress &)> &progress);

} // namespace glow
