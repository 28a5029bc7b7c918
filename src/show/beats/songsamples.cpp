#include "show/beats/songsamples.h"

#include "show/beats/beatfinder.h"

#include <QAudioBuffer>
#include <QAudioDecoder>
#include <QAudioFormat>
#include <QEventLoop>
#include <QFileInfo>
#include <QSysInfo>
#include <QTimer>

#include <algorithm>

namespace glow {

namespace {

// How often a decoder that delivers nothing is given up for a flag.
constexpr int lookMs = 20;

QAudioFormat sampleFormat()
{
    QAudioFormat format;
    format.setChannelCount(1);
    format.setCodec(QStringLiteral("audio/pcm"));
    format.setSampleType(QAudioFormat::Float);
    format.setSampleSize(32);
    format.setSampleRate(beatSampleRate);
    return format;
}

// A back end may deliver another format than it was asked for.
bool isReadable(const QAudioBuffer &buffer)
{
    const QAudioFormat format = buffer.format();
    const auto native =
        QSysInfo::ByteOrder == QSysInfo::LittleEndian ? QAudioFormat::LittleEndian : QAudioFormat::BigEndian;
    return format.channelCount() == 1 && format.sampleType() == QAudioFormat::Float && format.sampleSize() == 32 &&
           format.sampleRate() == beatSampleRate && format.byteOrder() == native;
}

double shareOf(const QAudioDecoder &decoder, const QAudioBuffer &buffer)
{
    const qint64 length = decoder.duration();
    const qint64 end = (buffer.startTime() + buffer.duration()) / 1000;
    return length > 0 && buffer.startTime() >= 0 ? std::clamp(double(end) / double(length), 0.0, 1.0) : -1.0;
}

} // namespace

SongRead readSong(const QString &path, const TakeSamples &take, const std::atomic<bool> &cancelled)
{
    SongRead result;
    QEventLoop loop;
    QAudioDecoder decoder;
    decoder.setAudioFormat(sampleFormat());
    decoder.setSourceFilename(QFileInfo(path).absoluteFilePath()); // the back ends open no relative path

    const auto end = [&](SongRead::State state, const QString &error = QString()) {
        result = {state, error};
        loop.quit();
    };
    const auto readAll = [&] {
        while (!cancelled && result.state == SongRead::Whole && decoder.bufferAvailable()) {
            const QAudioBuffer buffer = decoder.read();
            if (!buffer.isValid()) {
                return;
            }
            if (!isReadable(buffer)) {
                end(SongRead::Failed, QStringLiteral("the decoder delivers another format"));
                return;
            }
            take(buffer.constData<float>(), buffer.sampleCount(), shareOf(decoder, buffer));
        }
    };
    QObject::connect(&decoder, &QAudioDecoder::bufferReady, &loop, readAll);
    QObject::connect(&decoder, &QAudioDecoder::finished, &loop, [&] {
        readAll();
        loop.quit();
    });
    QObject::connect(&decoder, QOverload<QAudioDecoder::Error>::of(&QAudioDecoder::error), &loop,
                     [&] { end(SongRead::Failed, decoder.errorString()); });
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if (cancelled) {
            end(SongRead::Cancelled);
        }
    });
    look.start(lookMs);
    // Its errors may come at once, before the loop runs.
    QTimer::singleShot(0, &loop, [&decoder] { decoder.start(); });
    loop.exec();
    decoder.stop();
    if (cancelled && result.state == SongRead::Whole) {
        result.state = SongRead::Cancelled;
    }
    return result;
}

} // namespace glow
