#include "timeline/dragformat.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

namespace glow {

const QString mimeItem = QStringLiteral("timeline/item");
const QString mimeLeftEdge = QStringLiteral("timeline/itemleft");
const QString mimeRightEdge = QStringLiteral("timeline/itemright");
const QString mimePattern = QStringLiteral("timeline/itemByteArray");

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
