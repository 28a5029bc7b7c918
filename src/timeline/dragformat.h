// What a pattern carries through a drag or over the clipboard.
#pragma once

#include <QByteArray>
#include <QString>

class QMimeData;

namespace glow {

// Every drag of a pattern has the header under mimeItem, and once more under the edge that is pulled. A drag of the
// whole pattern carries the pattern's blob instead, which is what the clipboard holds too; only such a drag can change
// tracks.
extern const QString mimeItem;      // "timeline/item"
extern const QString mimeLeftEdge;  // "timeline/itemleft"
extern const QString mimeRightEdge; // "timeline/itemright"
extern const QString mimePattern;   // "timeline/itemByteArray"

// A QDataStream dump with the stream's defaults: qint32, qint32, QString.
struct DragHeader
{
    qint32 itemX = 0; // x of the item in its track at the press
    qint32 grabX = 0; // x of the mouse inside the item at the press
    QString itemId;   // finds the item on the track
};

QByteArray writeDragHeader(const DragHeader &header);

// Foreign bytes read as zeros and an empty id.
DragHeader readDragHeader(const QByteArray &bytes);

// The pattern on the system clipboard: whether there is one, its blob, and putting one there.
bool clipboardHasPattern();
QByteArray clipboardPattern();
void putPatternOnClipboard(const QByteArray &blob);

} // namespace glow
