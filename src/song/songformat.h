// What the song is decoded to, and where a decoded buffer stands in it.
#pragma once

#include <QAudioFormat>
#include <QtGlobal>

class QAudioBuffer;

namespace glow {

// Mono, signed 16-bit, wavePointRate() samples a second: one sample is one point of the waveform.
QAudioFormat waveFormat();

// True if the buffer's samples are what waveFormat() asks for and can be read as 16-bit numbers of this machine.
bool isWaveBuffer(const QAudioBuffer &buffer);

// The position in the song behind the buffer's last sample, milliseconds. Media back ends differ in what
// QAudioDecoder::position() means once a buffer was read: GStreamer reports the buffer's start, others its end. The
// buffer itself carries its start time, so that counts wherever it is known; decoderPosition is what the decoder says
// for buffers without one and is then taken for the start. The first buffer of a song is no exception: it ends after
// its own length.
qint64 endOfBuffer(const QAudioBuffer &buffer, qint64 decoderPosition);

} // namespace glow
