// Where a dragged pattern lands: magnetic zones at its neighbours, in track pixels. Neighbours are given by their
// limits: the right edge of what stands to the left (0 if nothing does) and the left edge of what stands to the right
// (the track's width if nothing does).
#pragma once

namespace glow {

// x of a pattern of that width whose left edge the mouse holds at left, at the present zoom. The magnets of a whole
// pattern reach 5 pixels and half a ruler tick; the left one goes first. Never below 0, free to the right.
int snappedBody(int left, int width, int leftLimit, int rightLimit);

// x of a right edge that the mouse pulls at mouseX.
int snappedRightEdge(int mouseX, int rightLimit);

// x of a left edge that the mouse pulls at mouseX; never below 0.
int snappedLeftEdge(int mouseX, int leftLimit);

} // namespace glow
