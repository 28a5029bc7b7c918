#include "bench.h"

#include "show/image/deviceimage.h"

#include <QFile>
#include <QImage>

namespace {

// Five minutes of pictures that are all stored: one copy each, as wide as its time.
glow::DeviceShow fullShow()
{
    constexpr int patterns = 200;
    constexpr int lengthMs = 300000 / patterns;
    glow::DeviceShow show;
    show.ledCount = 80;
    show.ledsShown = 80;
    show.frameRate = 2100.0F;
    show.rateShown = 2100;
    for (int i = 0; i < patterns; ++i) {
        glow::ShowPattern pattern;
        pattern.startMs = i * lengthMs;
        pattern.endMs = pattern.startMs + lengthMs;
        pattern.picture = QImage(170, 85, QImage::Format_RGB32);
        for (int y = 0; y < 85; ++y) {
            for (int x = 0; x < 170; ++x) {
                pattern.picture.setPixel(x, y, qRgb((x * 7 + i) & 255, (y * 3) & 255, (x * y) & 255));
            }
        }
        show.patterns.append(pattern);
    }
    return show;
}

} // namespace

void bench::device(QVector<Row> &rows)
{
    const glow::DeviceShow show = fullShow();
    qint64 bytes = 0;
    const double measured = median(3, [&show, &bytes] {
        QFile frames(QStringLiteral("bench-frames.tmp"));
        QFile header(QStringLiteral("bench-header.tmp"));
        frames.open(QIODevice::WriteOnly);
        header.open(QIODevice::WriteOnly);
        bytes = glow::writeDeviceImage(show, frames, header).frameBytes;
    });
    QByteArray memory(int(bytes), 'x');
    const double floor = median(3, [&memory] {
        QFile file(QStringLiteral("bench-floor.tmp"));
        file.open(QIODevice::WriteOnly);
        file.write(memory);
    });
    QFile::remove(QStringLiteral("bench-frames.tmp"));
    QFile::remove(QStringLiteral("bench-header.tmp"));
    QFile::remove(QStringLiteral("bench-floor.tmp"));
    rows.append({QStringLiteral(
                     "Device image of five minutes, 80 LEDs, 200 pictures all stored (%1 MB); floor: writing the bytes")
                     .arg(bytes / 1000000),
                 measured, floor, 4.0, QString()});
}
