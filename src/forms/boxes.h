// Message boxes that say more than their message.
#pragma once

#include <QMessageBox>

class QString;
class QWidget;

namespace glow {

// The box of QMessageBox::warning and its like, with an OK button and a second, plain text under the first.
void tell(QWidget *parent, QMessageBox::Icon icon, const QString &title, const QString &text, const QString &more);

} // namespace glow
