#include "song/songmaker.h"

#include <QDataStream>
#include <QFile>
#include <QVector>
#include <QtEndian>

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
    const auto frames = static_cast<int>(static_cast<qint64>(song.rate) * song.ms / 1000);
    QVector<qint16> samples(frames * song.channels);
    for (int i = 0; i < samples.size(); ++i) {
        const int second = song.rate * song.channels;
        samples[i] = i < 2 * second ? qToLittleEndian(sampleAt(static_cast<double>(i / song.channels) / song.rate))
                                    : samples.at(i - second);
    }
    const auto frameBytes = static_cast<quint16>(2 * song.channels);
    const auto dataBytes = static_cast<quint32>(frames * frameBytes);
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setByteOrder(QDataStream::LittleEndian);
    out.writeRawData("RIFF", 4);
    out << 36 + dataBytes;
    out.writeRawData("WAVEfmt ", 8);
    out << quint32(16) << quint16(1) << quint16(song.channels) << quint32(song.rate) << quint32(song.rate * frameBytes)
        << frameBytes << quint16(16);
    out.writeRawData("data", 4);
    out << dataBytes;
    out.writeRawData(reinterpret_cast<const char *>(samples.constData()), int(dataBytes));
    writeBytes(path, bytes);
}

void writeBytes(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        qFatal("cannot write a test song");
    }
}

} // namespace songs
