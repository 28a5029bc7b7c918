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

// The pattern on the system clipboard: whether there is one, its blob, and putting one there.
bool clipboardHasPattern();
QByteArray clipboardPattern();
void putPatternOnClipboard(const QByteArray &blob);

} // namespace glow
