// Messages in the status line that go when they are done with. What a later message has replaced is left alone.
#pragma once

class QStatusBar;
class QString;

namespace glow {

// How long what needs no answer stands, milliseconds.
extern int noteMs;

// Shows a text that goes by itself.
void note(QStatusBar *bar, const QString &text);

// The message that stands now goes by itself.
void letGo(QStatusBar *bar);

// Takes a message away whose cause is gone: the one that stands, if it begins so.
void retract(QStatusBar *bar, const QString &beginning);

} // namespace glow
