#include "timeline/dragformat.h"

#include <QClipboard>
#include <QDataStream>
#include <QGuiApplication>
#include <QMimeData>

namespace glow {

const QString mimeItem = QStringLiteral("timeline/item");
const QString mimeLeftEdge = QStringLiteral("timeline/itemleft");
const QString mimeRightEdge = QStringLiteral("timeline/itemright");
const QString mimePattern = QStringLiteral("timeline/itemByteArray");

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

bool clipboardHasPattern()
{
    const QMimeData *data = QGuiApplication::clipboard()->mimeData();
    return data != nullptr && data->hasFormat(mimePattern);
}

QByteArray clipboardPattern()
{
    const QMimeData *data = QGuiApplication::clipboard()->mimeData();
    return data != nullptr ? data->data(mimePattern) : QByteArray();
}

void putPatternOnClipboard(const QByteArray &blob)
{
    auto *data = new QMimeData;
    data->setData(mimePattern, blob);
    QGuiApplication::clipboard()->setMimeData(data);
}

} // namespace glow
