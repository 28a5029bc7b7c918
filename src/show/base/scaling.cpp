#include "show/base/scaling.h"

#include "show/base/numbers.h"

namespace glow {

double exactWidthAtHeight(const QSize &picture, int height)
{
    // The factor first, as Qt does it: another order rounds otherwise.
    return picture.width() * (static_cast<double>(height) / picture.height());
}

int widthAtHeight(const QSize &picture, int height)
{
    return truncated(exactWidthAtHeight(picture, height) + 0.5);
}

} // namespace glow
