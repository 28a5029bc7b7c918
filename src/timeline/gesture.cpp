#include "timeline/gesture.h"

#include <QObject>
#include <QPointer>
#include <QVector>

namespace glow {

namespace {

int depth = 0; // a press handler can run within another one's event loop

QVector<QPointer<QObject>> &waiting()
{
    static QVector<QPointer<QObject>> objects;
    return objects;
}

} // namespace

Gesture::Gesture()
{
    ++depth;
}

Gesture::~Gesture()
{
    --depth;
    if (depth > 0) {
        return;
    }
    for (const QPointer<QObject> &object : qAsConst(waiting())) {
        if (!object.isNull()) {
            object->deleteLater();
        }
    }
    waiting().clear();
}

bool Gesture::isPointless()
{
    return !waiting().isEmpty();
}

void Gesture::deleteAfterwards(QObject *object)
{
    if (depth > 0) {
        waiting().append(object);
    } else {
        object->deleteLater();
    }
}

} // namespace glow
