// From a picture file to the picture of a pattern: the chain of flips, scalings and the black gap, as values.
#pragma once

#include <QImage>

class QString;

namespace glow {

// Rows of the result, whatever the prop: the editor shows it at this height.
constexpr int pictureRows = 200;

// Limits of what is taken in, so that no picture asks for absurd memory: pixels of the file, columns of the result
// without its gap (327 times as long as high), pixels of the picture at LED height.
constexpr qint64 mostFilePixels = 120000000;
constexpr int mostPictureColumns = 65536;
constexpr qint64 mostLedPixels = 32000000;

struct PictureOptions
{
    bool flipH = false;
    bool flipV = false;
    int gap = 0;  // black columns behind the picture, in percent of its width
    int leds = 0; // rows of the prop
};

struct PictureResult
{
    QImage image;        // pictureRows high, gap included, opaque Format_RGB32; null if there is nothing to show
    int columns = 0;     // width of the picture alone at LED height
    bool tooBig = false; // nothing to show because one of the limits is passed
};

// Reads a file and brings it to LED height and then to pictureRows, so that the result shows the blocks that the prop
// will. What is no regular file or cannot be decoded, and no LEDs, give an empty result.
PictureResult loadPicture(const QString &path, const PictureOptions &options);

// The same from an image.
PictureResult renderPicture(QImage picture, const PictureOptions &options);

// Width in columns with a gap: percent of the picture's columns, the division cut.
int columnsWithGap(int columns, int gap);

// Another gap for a result: a black image as wide as so many columns of LED height are at pictureRows, with the old
// result at its left, cut where it is longer. Null for a null result, no columns, no LEDs, or a width beyond the
// limits.
QImage withGap(const QImage &result, int columns, int leds);

} // namespace glow
