// What a control without a text of its own tells: a tool tip, and a name for a screen reader.
#pragma once

class QString;
class QWidget;

namespace glow {

// A text that this program's own additions show, in the user's language. source is Traditional Chinese; its English
// stands in the catalogue's context "Hints".
QString hint(const char *source);

// Gives every picture button, slider and field of a window that has no tool tip one, with the control's shortcut, and
// puts the accessible names of the form into the user's language. To be called once, when the form stands.
void addHints(QWidget *window);

} // namespace glow
