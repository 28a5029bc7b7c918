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
    int slot = 0;
    int ledByte = 0;
    int entryByte = 0;
    QByteArray rate;
    bool loop = false;
    QList<PlainEntry> entries;
};

inline quint32 plainLength(const QByteArray &bytes, int at)
{
    quint32 length = 0;
    for (int i = 0; i < 4; ++i) {
        length = length * 256 + static_cast<uchar>(bytes.at(at + i));
    }
    return length;
}

// exact: nothing may stand behind the end of the frame data.
inline PlainShow plainDecode(const QByteArray &header, QByteArray data, bool exact = true)
{
    static const QByteArray trailer("\0\0\0\x06"
                                    "00000\0",
                                    10);
    PlainShow show;
    if (header.size() < 20 || !header.endsWith(trailer) || header.mid(1, 2) != "\xFF\xFE" || !data.startsWith('\xFF')) {
        return show;
    }
    show.slot = static_cast<uchar>(header.at(0));
    show.ledByte = static_cast<uchar>(header.at(3));
    show.entryByte = static_cast<uchar>(header.at(4));
    const int digits = static_cast<int>(plainLength(header, 5));
    show.rate = header.mid(9, digits);
    if (header.at(9 + digits) != '\xFF') {
        return show;
    }
    const QByteArray list = header.mid(10 + digits, header.size() - 10 - digits - trailer.size());
    if (list.isEmpty() || !list.endsWith('\xFF')) {
        return show;
    }
    data.remove(0, 1);
    const QList<QByteArray> repeats = list.left(list.size() - 1).split('\xFF');
    for (const QByteArray &repeat : repeats) {
        const int end = data.indexOf('\xFF');
        if (end < 0) {
            return show;
        }
        PlainEntry entry;
        entry.repeat = repeat.toInt();
        if (end > 0) {
            entry.frames = data.left(end).split('\xFE');
        }
        show.entries << entry;
        data.remove(0, end + 1);
    }
    show.loop = data.startsWith('\xFE' + trailer);
    if (show.loop) {
        data.remove(0, 11);
    }
    show.ok = !exact || data.isEmpty();
    return show;
}

inline PlainShow plainDecodeBin(const QByteArray &bin)
{
    const int size = static_cast<int>(plainLength(bin, 6));
    const QByteArray header = bin.mid(4, 1) + bin.mid(10, size - 1);
    QByteArray data;
    for (int at = 10 + size; at < bin.size(); at += 260) {
        if (plainLength(bin, at) != 256) {
            return {};
        }
        data += bin.mid(at + 4, 256);
    }
    return plainLength(bin, 0) == 2 && bin.at(5) == 0 ? plainDecode(header, data, false) : PlainShow();
}
