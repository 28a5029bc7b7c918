#include "show/film/wholefilm.h"

#include <QFile>

#include <utility>

namespace glow {

namespace {

quint64 bigEndian(const QByteArray &bytes)
{
    quint64 value = 0;
    for (const char byte : bytes) {
        value = value << 8 | static_cast<uchar>(byte);
    }
    return value;
}

// Boxes: a length of four bytes that counts itself, a name of four, and if the length is 1 one of eight behind them.
bool boxesFillFile(QFile &file)
{
    bool hasIndex = false;
    qint64 at = 0;
    while (at < file.size()) {
        file.seek(at);
        quint64 length = bigEndian(file.read(4));
        const QByteArray name = file.read(4);
        if (length == 1) {
            length = bigEndian(file.read(8));
        }
        if (name.size() < 4 || length < 8 || length > static_cast<quint64>(file.size() - at)) {
            return false;
        }
        hasIndex = hasIndex || name == "moov";
        at += static_cast<qint64>(length);
    }
    return hasIndex;
}

// An EBML length: as many leading zero bits as bytes follow the first, then a one, then the length itself. All ones
// stand for a length that nobody has filled in, which is larger than any file.
quint64 elementLength(QFile &file)
{
    QByteArray bytes = file.read(1);
    int more = 0;
    for (int first = bytes.isEmpty() ? 0 : static_cast<uchar>(bytes.at(0)); more < 8 && (first << more & 0x80) == 0;) {
        ++more;
    }
    if (more >= 8) {
        return ~0ULL;
    }
    bytes[0] = static_cast<char>(static_cast<uchar>(bytes.at(0)) & (0x7f >> more));
    return bigEndian(bytes + file.read(more));
}

// A head and one element that holds everything.
bool elementsFillFile(QFile &file)
{
    for (const auto &[name, isLast] : {std::pair(0x1a45dfa3ULL, false), std::pair(0x18538067ULL, true)}) {
        const bool named = bigEndian(file.read(4)) == name;
        const quint64 length = elementLength(file);
        const auto left = static_cast<quint64>(file.size() - file.pos());
        if (!named || length > left || (isLast && length != left)) {
            return false;
        }
        file.seek(file.pos() + static_cast<qint64>(length));
    }
    return true;
}

bool hasLastByte(QFile &file, char byte)
{
    return file.seek(file.size() - 1) && file.read(1) == QByteArray(1, byte);
}

} // namespace

bool isWholeFilm(const QString &path, FilmFormat format)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() == 0) {
        return false;
    }
    switch (format) {
    case FilmFormat::Mp4:
        return boxesFillFile(file);
    case FilmFormat::Webm:
        return elementsFillFile(file);
    case FilmFormat::Gif:
        return hasLastByte(file, ';');
    case FilmFormat::Png:
        break;
    }
    return true;
}

} // namespace glow
