// The picture that fills a pattern's rectangle on its track: copies of the thumbnail side by side.
#pragma once

#include <QPixmap>
#include <QSize>

namespace glow {

struct PatternRecord;

// Size of one copy in an item of that size: in speed mode the thumbnail at the item's height, aspect kept; otherwise
// the item's width divided by the repeat count (a count below 1 counts as 1). Empty if there is nothing to draw.
QSize tileSize(const PatternRecord &record, QSize item);

// A picture to tile with, and the x at which it starts. Null if there is nothing to draw.
struct ItemTexture
{
    QPixmap picture;
    int x = 0;
};

// The texture for the columns first to last (inclusive) of an item of that size. A copy of common width comes whole and
// starts at 0; of a wider one only those columns are made, so that a pattern of hours costs no more than what is seen.
ItemTexture itemTexture(const PatternRecord &record, QSize item, int first, int last);

} // namespace glow
