#include "forms/connectbyname.h"

#include <QByteArray>
#include <QMetaMethod>
#include <QObject>
#include <QString>

namespace glow {

void connectByName(QObject *owner)
{
    const QMetaObject *type = owner->metaObject();
    for (int i = 0; i < type->methodCount(); ++i) {
        const QMetaMethod slot = type->method(i);
        const QByteArray signature = slot.methodSignature();
        // The signal's name is what follows the last "_": objects hold that mark in their names, signals do not.
        const int mark = signature.lastIndexOf('_', signature.indexOf('('));
        if (slot.methodType() != QMetaMethod::Slot || !signature.startsWith("on_") || mark < 4) {
            continue;
        }
        const auto *sender = owner->findChild<QObject *>(QString::fromLatin1(signature.mid(3, mark - 3)));
        const int signal =
            sender != nullptr ? sender->metaObject()->indexOfSignal(signature.constData() + mark + 1) : -1;
        if (signal >= 0) {
            QObject::connect(sender, sender->metaObject()->method(signal), owner, slot);
        }
    }
}

} // namespace glow
