// Slots that find their widgets by name.
#pragma once

class QObject;

namespace glow {

// Connects every slot on_<object>_<signal>(...) of the owner to that signal, with the same arguments, of its child of
// that name. What QMetaObject::connectSlotsByName does, but for its warning about each slot of such a name that belongs
// to no child of the form: to a track or a menu, which come later and are connected where they are made.
void connectByName(QObject *owner);

} // namespace glow
