#include "show/image/binfile.h"

#include <QByteArray>
#include <QDataStream>
#include <QIODevice>

#include <array>

namespace glow {

void writeBin(QIODevice &header, QIODevice &frameData, QIODevice &out, const std::function<void(int)> &progress)
{
    QDataStream stream(&out);

    std::array<char, 2> track = {0, 0};
    qint64 headerSize = 0;
    if (header.isReadable()) {
        headerSize = header.size();
        header.read(track.data(), 1);
    }
    stream << track.data();
    QByteArray rest = header.isReadable() ? header.readAll() : QByteArray();
    rest.append(QByteArray(static_cast<int>(qMax<qint64>(headerSize - rest.size(), 0)), '\0'));
    stream << rest;

    if (!frameData.isReadable()) {
        return;
    }
    const qint64 size = frameData.size();
    QByteArray chunk(binChunkBytes, '\0'); // kept from chunk to chunk: a short last one ends in what stood there before
    for (qint64 offset = 0; !frameData.atEnd(); offset += binChunkBytes) {
        if (progress && size > 0) {
            progress(static_cast<int>(offset * 99 / size));
        }
        if (frameData.read(chunk.data(), binChunkBytes) <= 0) {
            break;
        }
        stream << chunk;
    }
}

} // namespace glow
