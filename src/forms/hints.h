// What a control without a text of its own tells: a tool tip, and a name for a screen reader.
#pragma once

#include "show/base/hint.h"

class QWidget;

namespace glow {

// Gives every picture button, slider and field of a window that has no tool tip one, with the control's shortcut, and
// puts the accessible names of the form into the user's language. To be called once, when the form stands.
void addHints(QWidget *window);

} // namespace glow
