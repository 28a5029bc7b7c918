#include "show/draw/effectimage.h"

#include "show/draw/effectcolours.h"
#include "show/draw/effectrows.h"

#include <QPainter>

namespace glow {

QImage effectImage(const EffectSettings &settings)
{
    const EffectColours colours(settings);
    // Only a back colour that lets something through needs an alpha channel.
    QImage canvas(effectCanvasWidth, effectCanvasHeight,
                  colours.back.alpha() == 255 ? QImage::Format_RGB32 : QImage::Format_ARGB32_Premultiplied);
    canvas.fill(colours.back);
    QPainter painter(&canvas);
    drawEffectRow(settings.row, painter, colours);
    painter.end();
    return canvas.mirrored(!settings.flipH, settings.flipV);
}

} // namespace glow
