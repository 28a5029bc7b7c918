// The gesture under way: what a press on a pattern, a track or a track's number starts, up to the return of the press
// handler.
//
// Such a handler runs event loops of its own (a drag, a menu, the question about a lost picture), and while one runs
// the whole show can go, the pressed widget with it. Handler and Qt both come back to that widget, so its destruction
// waits for the gesture's end.
#pragma once

class QObject;

namespace glow {

class Gesture
{
public:
    Gesture();
    ~Gesture();
    Gesture(const Gesture &) = delete;
    Gesture &operator=(const Gesture &) = delete;

    // Has the show gone since the gesture began? Then nothing is left to be dragged or settled.
    static bool isPointless();

    // deleteLater, but not before the end of the gesture under way, if there is one.
    static void deleteAfterwards(QObject *object);
};

} // namespace glow
