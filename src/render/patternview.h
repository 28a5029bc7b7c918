// The picture that a pattern tab shows of its result.
#pragma once

class QGraphicsView;
class QPixmap;

namespace glow {

// Gives the view a new scene with nothing but the picture, at full size, and shows the view: shrunk where it is higher
// than the view, which lets the width alone scroll. The scene belongs to the view; the one before it goes, however
// often a control renders its tab anew.
void showPattern(QGraphicsView &view, const QPixmap &picture);

} // namespace glow
