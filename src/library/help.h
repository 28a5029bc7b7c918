// The manual, in the user's browser.
#pragma once

class QMenu;
class QStatusBar;
class QString;

namespace glow {

// Adds the manual (F1) and its table of keys and mouse gestures to the end of a menu.
void addHelp(QMenu *menu, QStatusBar *bar);

// Opens a page of the manual that is installed with the program. One that is not there is named in the status line.
void openManual(const QString &page, QStatusBar *bar);

} // namespace glow
