#include "show/model/gadgetcatalogue.h"

#include "show/base/resources.h"

#include <QFile>
#include <QIODevice>
#include <QStringList>

namespace glow {

QVector<Gadget> readGadgets(QIODevice &text)
{
    QVector<Gadget> rows;
    while (!text.atEnd()) {
        const QString line = QString::fromUtf8(text.readLine()).trimmed();
        const QStringList fields = line.split(u',');
        if (fields.size() < 3) {
            continue;
        }
        rows.append({fields.at(0).toInt(), fields.at(1).toInt(), fields.at(2)});
    }
    return rows;
}

QVector<Gadget> builtInGadgets()
{
    initResources();
    QFile file(QStringLiteral(":/presets/gadgets.txt"));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        return {};
    }
    return readGadgets(file);
}

int findGadget(const QVector<Gadget> &rows, int leds, float rate)
{
    for (int i = 0; i < rows.size(); ++i) {
        if (rows.at(i).leds == leds && static_cast<float>(rows.at(i).rate) == rate) {
            return i;
        }
    }
    return -1;
}

} // namespace glow
