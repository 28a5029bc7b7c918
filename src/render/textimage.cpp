#include "render/textimage.h"

#include "show/draw/rasterops.h"

#include <QFont>
#include <QFontMetrics>
#include <QFrame>
#include <QPainter>
#include <QPalette>
#include <QTextEdit>

#include <algorithm>
#include <cmath>
#include <utility>

namespace glow {

namespace {

constexpr int pointSize = 300;
constexpr double mostPixels = 16000000.0;
constexpr int fewestRows = 120;

QImage paintBox(const TextOptions &options, const QFont &font, const QSize &box, const QSize &size)
{
    QTextEdit edit;
    edit.setFrameShape(QFrame::NoFrame);
    edit.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    edit.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    edit.setFont(font);
    edit.resize(box);
    QPalette palette = edit.palette();
    palette.setBrush(QPalette::Base, QBrush(options.back));
    palette.setBrush(QPalette::Text, QColor(options.fore.red(), options.fore.green(), options.fore.blue(), 255));
    edit.setPalette(palette);
    edit.setText(options.text);
    edit.setAlignment(Qt::AlignLeft);

    QImage image(size, QImage::Format_RGB32);
    if (image.isNull()) {
        return image;
    }
    image.fill(Qt::black);
    QPainter painter(&image);
    if (size != box) {
        painter.scale(static_cast<double>(size.width()) / box.width(),
                      static_cast<double>(size.height()) / box.height());
    }
    edit.render(&painter, QPoint(0, 0), QRegion(), QWidget::DrawWindowBackground | QWidget::DrawChildren);
    return image;
}

} // namespace

QSize textBox(int lineHeight, int textWidth, int sizeIndex, int slide)
{
    // A list without a selected row counts as its first one.
    const int k = std::clamp(sizeIndex, 0, 9) + 1;
    const quint32 product =
        static_cast<quint32>(textWidth) * static_cast<quint32>(slide) * static_cast<quint32>(k * 10);
    return {static_cast<qint32>(product) / 500 + 50, lineHeight * 10 / k};
}

QSize textImageSize(const QSize &box)
{
    if (box.isEmpty()) {
        return {};
    }
    const double pixels = static_cast<double>(box.width()) * box.height();
    const double scale =
        std::min({1.0, static_cast<double>(painterLimit) / box.width(), std::sqrt(mostPixels / pixels)});
    if (scale == 1.0) {
        return box;
    }
    const QSize size(std::max(1, static_cast<int>(box.width() * scale)), static_cast<int>(box.height() * scale));
    return size.height() < fewestRows ? QSize() : size;
}

TextResult renderText(const TextOptions &options)
{
    const QFont font(options.family, pointSize, -1, false);
    const QFontMetrics metrics(font);
    const QSize box =
        textBox(metrics.height(), metrics.horizontalAdvance(options.text), options.sizeIndex, options.slide);
    const QSize size = textImageSize(box);
    if (size.isEmpty()) {
        TextOptions none = options;
        none.text.clear();
        TextResult result = options.text.isEmpty() ? TextResult() : renderText(none);
        result.tooLong = true;
        return result;
    }
    TextResult result;
    result.image = paintBox(options, font, box, size);
    if (options.flipH) {
        result.image = std::move(result.image).mirrored(true, false);
    }
    if (options.flipV) {
        result.image = std::move(result.image).mirrored(false, true);
    }
    return result;
}

} // namespace glow
