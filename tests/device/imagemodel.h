// A second writer of device images, to be compared with the program's own byte by byte.
#pragma once

#include "show/image/deviceimage.h"

#include <QByteArrayList>
#include <QColor>
#include <QPair>

#include <cmath>

struct ImageModel
{
    QByteArray header;
    QByteArray data;
    QList<QPair<int, QByteArrayList>> entries; // repeat and frames
};

// The rules of the conversion once more, frame by frame and as plainly as they go.
inline ImageModel modelOf(const glow::DeviceShow &show)
{
    QByteArray list;
    QList<QPair<int, QByteArrayList>> entries;
    QByteArray data("\xFF");
    float drift = 0;
    const auto triple = [&show](QRgb colour) {
        QByteArray bytes;
        for (const int c : {qRed(colour), qGreen(colour), qBlue(colour)}) {
            bytes += static_cast<char>(c * c / (show.ledsShown == 70 ? 265 : 750));
        }
        return bytes;
    };
    const auto add = [&](int repeat, const QByteArrayList &frames) {
        list += QByteArray::number(repeat) + '\xFF';
        data += frames.join('\xFE') + '\xFF';
        entries.append({repeat, frames});
    };
    const auto addBlocks = [&](float ms, QRgb colour) {
        const int repeat = static_cast<int>(ms / 240.0F);
        const float exact = ms * show.frameRate;
        const int frames = repeat == 0 ? 0 : static_cast<int>(std::floor(double(exact / float(repeat * 1000)) + 0.5));
        drift = drift + (exact / 1000.0F - float(frames * repeat));
        QByteArrayList all;
        for (int i = 0; i < frames; ++i) {
            all << triple(colour).repeated(show.ledCount);
        }
        add(repeat, all);
    };
    const auto addPicture = [&](float ms, const glow::ShowPattern &pattern) {
        int unit = pattern.repeatCount;
        const float exact = ms * show.frameRate;
        int frames = qMax(1, static_cast<int>(std::floor(double(exact / float(unit * 1000)) + 0.5)));
        drift = drift + (exact / 1000.0F - float(frames * unit));
        for (; double(drift) >= unit * 0.6; ++frames) {
            drift -= float(unit);
        }
        for (; unit * -0.6 >= double(drift); --frames) {
            drift += float(unit);
        }
        const QImage scaled =
            pattern.picture.scaled(frames, show.ledCount, Qt::IgnoreAspectRatio, Qt::FastTransformation);
        int copies = 1;
        while (copies * frames < 2 * show.ledCount) {
            int found = 0;
            for (const int prime : {13, 11, 7, 5, 3, 2}) {
                found = unit % prime == 0 ? prime : found;
            }
            if (found == 0 && unit <= 13) {
                break;
            }
            unit = found != 0 ? unit / found : unit / 2 + 1;
            copies *= found != 0 ? found : 2;
            if (found != 0) {
                break;
            }
        }
        QByteArrayList all;
        for (int i = 0; i < copies * frames; ++i) {
            QByteArray frame;
            for (int y = show.ledCount - 1; y >= 0; --y) {
                frame += triple(scaled.pixelColor(i % frames, y).rgb());
            }
            all << frame;
        }
        add(unit, all);
    };
    int before = show.startMarkMs;
    for (const glow::ShowPattern &pattern : show.patterns) {
        if (pattern.startMs - before > 240) {
            addBlocks(float(pattern.startMs - before), 0);
        }
        const auto ms = float(pattern.endMs - pattern.startMs);
        pattern.isColour ? addBlocks(ms, pattern.colour) : addPicture(ms, pattern);
        before = pattern.endMs;
    }
    const QByteArray tail = QByteArray::fromHex("00000006303030303000");
    const QByteArray rate = QByteArray::number(show.rateShown);
    const QByteArray header = QByteArray(1, char(show.slot)) + "\xFF\xFE" + char(show.ledCount) + char(entries.size()) +
                              QByteArray(3, '\0') + char(rate.size()) + rate + '\xFF' + list + tail;
    return {header, show.loop ? data + '\xFE' + tail : data, entries};
}

// The ".bin" file: the header as two texts, the frame data in chunks, each behind its length. The last byte of the
// second text and the end of the last chunk are what stood in the memory before.
inline QByteArray binOf(const ImageModel &image)
{
    const auto length = [](int size) {
        return QByteArray::fromHex(QByteArray::number(size, 16).rightJustified(8, '0'));
    };
    QByteArray bin = length(2) + image.header.left(1) + '\0';
    bin += length(image.header.size()) + image.header.mid(1) + '\0';
    QByteArray chunk(256, '\0');
    for (int at = 0; at < image.data.size(); at += 256) {
        const QByteArray next = image.data.mid(at, 256);
        bin += length(256) + chunk.replace(0, next.size(), next);
    }
    return bin;
}
