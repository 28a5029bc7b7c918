// The fixed bytes of the device image, shared by its writer and its reader; deviceimage.h says where they stand.
#pragma once

#include <QByteArray>

namespace glow {

constexpr uchar dataMark = 0xFF; // in front of the frame data
constexpr uchar frameEnd = 0xFE; // between two frames of an entry
constexpr uchar entryEnd = 0xFF; // behind the frames of an entry, and behind each number of the header

// The two markers behind the track byte.
inline QByteArray headerMarks()
{
    return QByteArrayLiteral("\xFF\xFE");
}

// What a QDataStream makes of the string "00000": ends the header, and the frame data of a looping show.
inline QByteArray imageTrailer()
{
    return QByteArrayLiteral("\0\0\0\x06"
                             "00000\0");
}

// Behind the frame data of a show that starts over at its end.
inline QByteArray loopTail()
{
    return static_cast<char>(frameEnd) + imageTrailer();
}

// The wire leaves out so many bytes at the end of the header.
constexpr int wireCut = 2;

} // namespace glow
