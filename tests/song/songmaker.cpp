#include "song/songmaker.h"

#include "support/samples.h"

#include <QDataStream>
#include <QtEndian>

#include <cmath>

namespace songs {

namespace {

qint16 sampleAt(double seconds)
{
    const double pi = std::acos(-1.0);
    const double second = std::round(seconds);
    const double away = seconds - second;
    const double tone = 0.002 * std::sin(2 * pi * 60 * seconds);
    const double pulse = second >= 1 && std::abs(away) < 0.004 ? 0.95 * std::pow(std::cos(away / 0.008 * pi), 2.0) : 0;
    return static_cast<qint16>(32767 * (tone + pulse));
}

} // namespace

void writeWav(const QString &path, const Song &song)
{
    const auto frames = static_cast<int>(static_cast<qint64>(song.rate) * song.ms / 1000);
    const auto frameBytes = static_cast<quint16>(2 * song.channels);
    const auto size = static_cast<quint32>(frames * frameBytes);
    const auto word = [](const char *letters) { return qFromLittleEndian<quint32>(letters); };
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setByteOrder(QDataStream::LittleEndian);
    out << word("RIFF") << 36 + size << word("WAVE") << word("fmt ") << quint32(16) << quint16(1)
        << quint16(song.channels) << quint32(song.rate) << quint32(song.rate * frameBytes) << frameBytes << quint16(16)
        << word("data") << size;
    for (int i = 0; i < frames * song.channels && i < 2 * song.rate * song.channels; ++i) {
        out << sampleAt(static_cast<double>(i / song.channels) / song.rate);
    }
    // From the first second on all seconds are alike.
    const int second = song.rate * frameBytes;
    while (bytes.size() < 44 + frames * frameBytes) {
        bytes += bytes.mid(bytes.size() - second, 44 + frames * frameBytes - bytes.size());
    }
    if (!put(path, bytes)) {
        qFatal("cannot write a test song");
    }
}

} // namespace songs
