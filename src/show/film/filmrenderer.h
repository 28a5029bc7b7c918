// The frames of a film, drawn one by one.
#pragma once

#include "show/draw/showprop.h"
#include "show/film/filmplan.h"

#include <QImage>
#include <QRect>
#include <QVector>

namespace glow {

// The cells of so many props in a frame, in reading order, as large as they can be; empty if a cell would be smaller
// than leastCellSide. One prop has the whole frame.
QVector<QRect> gridOf(int props, const QSize &frame);

// The part of a cell in which the preview's views are drawn: all of it, unless it is so narrow that the disc would be
// cut.
QRect viewsWithin(const QRect &cell);

// Any frame in any order, always the same; in their order they cost least. One thread at a time.
class FilmRenderer
{
public:
    explicit FilmRenderer(const FilmPlan &plan);

    // Format_RGB32 of the plan's size. Frame 0 shows the moment fromMs.
    QImage frame(int number) { return moment(plan.timeOfFrame(number)); }
    QImage moment(int ms);

private:
    void drawTexts(QImage &picture, int ms) const;

    FilmPlan plan;
    QVector<QRect> cells;
    QVector<ShowProp> props;
};

} // namespace glow
