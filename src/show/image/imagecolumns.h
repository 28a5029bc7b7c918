// A picture read column by column at the size that the prop shows it, as the prop's bytes.
#pragma once

#include <QByteArray>
#include <QImage>
#include <QVector>

#include <array>

namespace glow {

// What each colour component of 0 to 255 is stored as.
using BrightnessTable = std::array<uchar, 256>;

class ImageColumns
{
public:
    // The picture at so many columns (at least 1) and rows, scaled without smoothing and without regard to its
    // proportions: pixel for pixel what QImage::scaled with Qt::FastTransformation makes of it. The table must outlive
    // this object. Memory stays bounded at any number of columns.
    ImageColumns(const QImage &picture, int columns, int rows, const BrightnessTable &table);

    // Red, green and blue of column x, from the bottom row to the top row: 3 * rows bytes, valid until the next call.
    // Quick for neighbouring columns, which mostly come from one column of the picture.
    const QByteArray &column(int x);

private:
    void mapPixels(const QImage &picture, int width, int rows);
    int sourceOf(int x) const;

    QImage source;        // null for a null picture, which is black
    QVector<int> sourceX; // column of source for each column of the scaled picture
    QVector<int> sourceY; // row of source for each row
    int columns;          // asked for; more than sourceX has where Qt cannot scale that far
    bool unmultiply;      // colours are stored multiplied by their alpha
    const BrightnessTable &table;
    int current = -1; // column of source that stands in bytes
    QByteArray bytes;
};

} // namespace glow
