#include "forms/boxes.h"

#include <QGridLayout>
#include <QString>

namespace glow {

namespace {

constexpr int adviceWidth = 560;

}

void tell(QWidget *parent, QMessageBox::Icon icon, const QString &title, const QString &text, const QString &more)
{
    QMessageBox box(icon, title, text, QMessageBox::Ok, parent);
    box.setInformativeText(more);
    // A box is as narrow as its first text; several lines of advice want more room.
    if (auto *grid = more.isEmpty() ? nullptr : qobject_cast<QGridLayout *>(box.layout())) {
        grid->addItem(new QSpacerItem(adviceWidth, 0), grid->rowCount(), 0, 1, grid->columnCount());
    }
    box.exec();
}

} // namespace glow
