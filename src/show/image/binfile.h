// The ".bin" file: a show as it is handed out in one file. Nothing in the program reads one back for editing; the
// decoder (devicedecode.h) reads it to draw what the prop will show.
//
//   32-bit 2, the track byte, 00
//   32-bit S, then S bytes: the show header behind its track byte (S - 1 bytes) and a filler byte
//   the frame data in chunks: 32-bit 256, then 256 bytes; what the last chunk is short of is filler
//
// S is the length of the whole header, track byte included. All numbers are big-endian. Filler carries no meaning.
#pragma once

#include <functional>

class QIODevice;

namespace glow {

constexpr int binChunkBytes = 256;

// Packs a device image, both parts opened for reading, into out. progress, when given, is called with a percentage (0
// to 99) before each chunk. No failure is reported: a part that cannot be read counts as empty.
void writeBin(QIODevice &header, QIODevice &frameData, QIODevice &out, const std::function<void(int)> &progress = {});

} // namespace glow
