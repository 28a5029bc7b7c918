// A second reader of device images, written from the format alone and sharing nothing with the program's own: it
// splits by the markers, which can never occur inside a frame.
#pragma once

#include <QByteArray>
#include <QList>

struct PlainEntry
{
    int repeat = 0;
    QList<QByteArray> frames;
};

struct PlainShow
{
    bool ok = false;
    QByteArray fixed; // slot, LEDs and number of entries, low bytes each
    QByteArray rate;
    bool loop = false;
    QList<PlainEntry> entries;
};

inline int plainLength(const QByteArray &bytes, int at)
{
    return bytes.mid(at, 4).toHex().toInt(nullptr, 16);
}

// exact: nothing may stand behind the end of the frame data.
inline PlainShow plainDecode(const QByteArray &header, QByteArray data, bool exact = true)
{
    static const QByteArray trailer = QByteArray::fromHex("00000006303030303000");
    PlainShow show;
    const int digits = header.size() < 20 ? 0 : plainLength(header, 5);
    const QByteArray list = header.mid(10 + digits, header.size() - 20 - digits);
    if (!header.endsWith(trailer) || header.mid(1, 2) != "\xFF\xFE" || header.mid(9 + digits, 1) != "\xFF" ||
        !list.endsWith('\xFF') || !data.startsWith('\xFF')) {
        return show;
    }
    show.fixed = header.left(1) + header.mid(3, 2);
    show.rate = header.mid(9, digits);
    data.remove(0, 1);
    const QList<QByteArray> repeats = list.left(list.size() - 1).split('\xFF');
    for (const QByteArray &repeat : repeats) {
        const int end = data.indexOf('\xFF');
        if (end < 0) {
            return show;
        }
        show.entries << PlainEntry{repeat.toInt(), end > 0 ? data.left(end).split('\xFE') : QList<QByteArray>()};
        data.remove(0, end + 1);
    }
    show.loop = data.startsWith('\xFE' + trailer);
    show.ok = !exact || data.size() == (show.loop ? 11 : 0);
    return show;
}

inline PlainShow plainDecodeBin(const QByteArray &bin)
{
    const int size = plainLength(bin, 6);
    QByteArray data;
    bool ok = plainLength(bin, 0) == 2 && bin.at(5) == 0;
    for (int at = 10 + size; at < bin.size(); at += 260) {
        ok = ok && plainLength(bin, at) == 256;
        data += bin.mid(at + 4, 256);
    }
    return ok ? plainDecode(bin.mid(4, 1) + bin.mid(10, size - 1), data, false) : PlainShow();
}
