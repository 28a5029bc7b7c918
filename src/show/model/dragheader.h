// What a drag tells of the pattern that it moves.
#pragma once

#include <QByteArray>
#include <QString>

namespace glow {

// A QDataStream dump with the stream's defaults: qint32, qint32, QString.
struct DragHeader
{
    qint32 itemX = 0; // x of the item in its track at the press
    qint32 grabX = 0; // x of the mouse inside the item at the press
    QString itemId;   // finds the item on the track
};

QByteArray writeDragHeader(const DragHeader &header);

// Bytes of another origin read as zeros and an empty id.
DragHeader readDragHeader(const QByteArray &bytes);

} // namespace glow
