// Small files and patterns of a test's own.
#pragma once

#include "show/model/patternrecord.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

inline QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot be read");
}

// Makes the folder as well; false if it cannot be written.
inline bool put(const QString &path, const QByteArray &bytes = {})
{
    QFile file(path);
    return QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly) &&
           file.write(bytes) == bytes.size();
}

// A pattern of the kind that its settings name, with a picture of one colour.
inline QByteArray patternBlob(const QString &settings, int startMs, int lengthMs = 500, const QColor &colour = Qt::red,
                              int repeats = 1, int speed = 0)
{
    glow::PatternRecord record;
    record.thumbnail = QPixmap(40, 85);
    record.thumbnail.fill(colour);
    record.startTime = glow::timeOf(startMs);
    record.endTime = glow::timeOf(startMs + lengthMs);
    record.repeatCount = repeats;
    record.speedValue = speed;
    record.patternKind = settings.left(1).toInt();
    record.solidColor = record.patternKind == glow::ColourPattern ? colour : QColor();
    record.settingsText = settings;
    return glow::writePattern(record);
}
