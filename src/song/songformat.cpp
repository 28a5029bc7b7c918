#include "song/songformat.h"

#include "show/draw/waveform.h"

#include <QAudioBuffer>
#include <QSysInfo>

#include <algorithm>

namespace glow {

QAudioFormat waveFormat()
{
    QAudioFormat format;
    format.setChannelCount(1);
    format.setCodec(QStringLiteral("audio/pcm"));
    format.setSampleType(QAudioFormat::SignedInt);
    format.setSampleSize(16);
    format.setSampleRate(wavePointRate());
    return format;
}

bool isWaveBuffer(const QAudioBuffer &buffer)
{
    const QAudioFormat format = buffer.format();
    const auto native =
        QSysInfo::ByteOrder == QSysInfo::LittleEndian ? QAudioFormat::LittleEndian : QAudioFormat::BigEndian;
    return buffer.isValid() && format.channelCount() == 1 && format.sampleType() == QAudioFormat::SignedInt &&
           format.sampleSize() == 16 && format.sampleRate() == wavePointRate() && format.byteOrder() == native;
}

qint64 endOfBuffer(const QAudioBuffer &buffer, qint64 decoderPosition)
{
    const qint64 startUs = buffer.startTime() >= 0 ? buffer.startTime() : std::max<qint64>(decoderPosition, 0) * 1000;
    return (startUs + buffer.duration()) / 1000;
}

} // namespace glow
