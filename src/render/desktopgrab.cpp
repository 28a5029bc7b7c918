#include "render/desktopgrab.h"

#include <QEventLoop>
#include <QGuiApplication>
#include <QPainter>
#include <QPixmap>
#include <QScreen>
#include <QTimer>
#include <QVector>

#include <algorithm>

namespace glow {

namespace {

constexpr int settleMs = 300; // longer than the usual fading of a window

} // namespace

QRect desktopGeometry()
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen != nullptr ? screen->virtualGeometry() : QRect();
}

QImage grabDesktop()
{
    const QPoint origin = desktopGeometry().topLeft();
    const QList<QScreen *> screens = QGuiApplication::screens();
    qreal ratio = 1.0;
    for (const QScreen *screen : screens) {
        ratio = std::max(ratio, screen->devicePixelRatio());
    }

    struct Part
    {
        QRect place;
        QImage picture;
    };
    QVector<Part> parts;
    QRect whole;
    for (QScreen *screen : screens) {
        QImage picture = screen->grabWindow(0).toImage();
        const QSize size = picture.isNull()
                               ? screen->size() * ratio
                               : QSizeF(QSizeF(picture.size()) * (ratio / screen->devicePixelRatio())).toSize();
        const QPoint place = QPointF(QPointF(screen->geometry().topLeft() - origin) * ratio).toPoint();
        picture.setDevicePixelRatio(1.0);
        parts.append({QRect(place, size), picture});
        whole |= parts.last().place;
    }

    QImage desktop(whole.right() + 1, whole.bottom() + 1, QImage::Format_RGB32);
    desktop.fill(Qt::black);
    QPainter painter(&desktop);
    for (const Part &part : parts) {
        painter.drawImage(part.place, part.picture);
    }
    painter.end();
    desktop.setDevicePixelRatio(ratio);
    return desktop;
}

void letDesktopSettle()
{
    QEventLoop loop;
    QTimer::singleShot(settleMs, &loop, &QEventLoop::quit);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
}

QRect devicePixels(const QRect &logical, qreal ratio)
{
    if (logical.isNull()) {
        return {};
    }
    const QPoint from = QPointF(QPointF(logical.topLeft()) * ratio).toPoint();
    const QPoint to = QPointF(QPointF(logical.bottomRight() + QPoint(1, 1)) * ratio).toPoint();
    return {from, to - QPoint(1, 1)};
}

} // namespace glow
