#include "show/model/dragheader.h"

#include <QDataStream>

namespace glow {

QByteArray writeDragHeader(const DragHeader &header)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << header.itemX << header.grabX << header.itemId;
    return bytes;
}

DragHeader readDragHeader(const QByteArray &bytes)
{
    DragHeader header;
    QDataStream stream(bytes);
    stream >> header.itemX >> header.grabX >> header.itemId;
    return header;
}

} // namespace glow
