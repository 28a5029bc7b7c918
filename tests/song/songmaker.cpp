#include "song/songmaker.h"

#include <QDataStream>
#include <QFile>
#include <QProcess>

#include <cmath>

namespace songs {

namespace {

const double pi = std::acos(-1.0);

qint16 sampleAt(double seconds)
{
    const double second = std::round(seconds);
    const double away = seconds - second;
    const double tone = 0.002 * std::sin(2 * pi * 60 * seconds);
    const double pulse = second >= 1 && std::abs(away) < 0.004 ? 0.95 * std::pow(std::cos(away / 0.008 * pi), 2.0) : 0;
    return static_cast<qint16>(32767 * (tone + pulse));
}

} // namespace

void writeWav(const QString &path, const Song &song)
{
    const auto frames = static_cast<quint32>(static_cast<qint64>(song.rate) * song.ms / 1000);
    const auto frameBytes = static_cast<quint16>(2 * song.channels);
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setByteOrder(QDataStream::LittleEndian);
    out.writeRawData("RIFF", 4);
    out << quint32(36 + frames * frameBytes);
    out.writeRawData("WAVEfmt ", 8);
    out << quint32(16) << quint16(1) << quint16(song.channels) << quint32(song.rate) << quint32(song.rate * frameBytes)
        << frameBytes << quint16(16);
    out.writeRawData("data", 4);
    out << quint32(frames * frameBytes);
    for (quint32 i = 0; i < frames; ++i) {
        const qint16 sample = sampleAt(static_cast<double>(i) / song.rate);
        for (int channel = 0; channel < song.channels; ++channel) {
            out << sample;
        }
    }
    writeBytes(path, bytes);
}

bool encode(const QString &from, const QString &to, const QStringList &options)
{
    return QProcess::execute("ffmpeg", QStringList{"-v", "error", "-y", "-i", from} + options + QStringList{to}) == 0;
}

void writeBytes(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        qFatal("cannot write a test song");
    }
}

} // namespace songs
