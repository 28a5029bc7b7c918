// Whether a film's file is all there.
#pragma once

#include "show/film/filmplan.h"

#include <QString>

namespace glow {

// False for a file that was cut off, as on a full disk, of which ffmpeg does not always tell when it happens at the
// very end: the outermost parts of an .mp4 (ISO/IEC 14496-12) and of a .webm (EBML, RFC 8794) say how long they are,
// and a .gif ends in a byte of its own. An empty file is never whole.
bool isWholeFilm(const QString &file, FilmFormat format);

} // namespace glow
