// Songs for tests: short files with a click at every whole second.
#pragma once

#include <QString>
#include <QStringList>

namespace songs {

struct Song
{
    int rate = 44100;
    int channels = 2;
    int ms = 4000;
};

// Writes a RIFF file of 16-bit samples: a very soft tone, and around every whole second k above 0 a pulse of 8
// milliseconds that peaks exactly at k.
void writeWav(const QString &path, const Song &song);

// Encodes a file by ffmpeg; the format follows the name. False if there is none that makes it.
bool encode(const QString &from, const QString &to, const QStringList &options);

// A file of any bytes.
void writeBytes(const QString &path, const QByteArray &bytes);

} // namespace songs
