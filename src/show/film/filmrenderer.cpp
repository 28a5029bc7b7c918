#include "show/film/filmrenderer.h"

#include <QFont>
#include <QPainter>

#include <algorithm>

namespace glow {

namespace {

// A frame of the preview is as high as 10/9 of its views, and of the disc's square the outer twentieth stays black.
constexpr double leastAspect = 2 * 0.9 * 0.95;

QFont textFont(int pixels)
{
    QFont font(QStringLiteral("monospace"));
    font.setStyleHint(QFont::Monospace);
    font.setPixelSize(pixels);
    return font;
}

} // namespace

QRect viewsWithin(const QRect &cell)
{
    const int height = std::min(cell.height(), static_cast<int>(cell.width() / leastAspect));
    return {cell.left(), cell.top() + (cell.height() - height) / 2, cell.width(), height};
}

QVector<QRect> gridOf(int props, const QSize &frame)
{
    int columns = 1;
    int best = 0;
    for (int tried = 1; tried <= props; ++tried) {
        const int rows = (props + tried - 1) / tried;
        const int height = viewsWithin({0, 0, frame.width() / tried, frame.height() / rows}).height();
        if (height > best) {
            best = height;
            columns = tried;
        }
    }
    QVector<QRect> cells;
    const int rows = (props + columns - 1) / columns;
    const QSize cell = rows > 0 ? QSize(frame.width() / columns, frame.height() / rows) : QSize();
    if (best < leastCellSide) {
        return cells;
    }
    for (int i = 0; i < props; ++i) {
        cells.append(QRect(QPoint(i % columns * cell.width(), i / columns * cell.height()), cell));
    }
    return cells;
}

FilmRenderer::FilmRenderer(const FilmPlan &filmPlan)
    : plan(filmPlan)
    , cells(gridOf(plan.tracks.size(), plan.size))
{
    for (const FilmTrack &track : qAsConst(plan.tracks)) {
        props.append(ShowProp(track.patterns, plan.leds));
    }
}

QImage FilmRenderer::moment(int ms)
{
    QImage picture(plan.size, QImage::Format_RGB32);
    picture.fill(Qt::black);
    for (int i = 0; i < cells.size(); ++i) {
        props[i].showAt(ms);
        props[i].draw(picture, viewsWithin(cells.at(i)));
    }
    drawTexts(picture, ms);
    return picture;
}

void FilmRenderer::drawTexts(QImage &picture, int ms) const
{
    if (!plan.timeCode && cells.size() < 2) {
        return;
    }
    constexpr int leastPixels = 10;
    QPainter painter(&picture);
    painter.setPen(QColor(200, 200, 200));
    for (int i = 0; cells.size() > 1 && i < cells.size(); ++i) {
        const int pixels = std::max(leastPixels, cells.at(i).height() / 14);
        painter.setFont(textFont(pixels));
        painter.drawText(cells.at(i).adjusted(pixels / 2, pixels / 4, 0, 0), Qt::AlignLeft | Qt::AlignTop,
                         QString::number(plan.tracks.at(i).number));
    }
    if (plan.timeCode) {
        const int pixels = std::max(leastPixels, picture.height() / 26);
        painter.setFont(textFont(pixels));
        painter.drawText(picture.rect().adjusted(0, 0, -pixels / 2, -pixels / 4), Qt::AlignRight | Qt::AlignBottom,
                         filmTimeText(ms));
    }
}

} // namespace glow
