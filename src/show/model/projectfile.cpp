#include "show/model/projectfile.h"

#include <QDataStream>
#include <QIODevice>

namespace glow {

namespace {

const QByteArray trackMark = QByteArrayLiteral("NEXT");

} // namespace

bool Project::hasSong() const
{
    return !songPath.isEmpty() && songPath != QLatin1String("null");
}

Project readProject(const QByteArray &bytes)
{
    QDataStream stream(bytes);
    Project project;
    stream >> project.ledCount >> project.frameRate >> project.songPath;
    project.tracks.resize(1);
    while (!stream.atEnd()) {
        QByteArray item;
        stream >> item; // an absurd length takes what is left, a megabyte at a time
        if (item == trackMark) {
            project.tracks.append(QVector<QByteArray>());
        } else {
            project.tracks.last().append(item);
        }
    }
    return project;
}

bool looksLikeProject(const QByteArray &bytes)
{
    // The shortest one: the two numbers and the song's "null".
    constexpr int shortest = 22;
    constexpr int headLength = 14;
    constexpr double absurdRate = 1.0e6;
    QDataStream stream(bytes);
    qint16 leds = 0;
    double rate = 0;
    quint32 songLength = 0; // bytes of UTF-16
    stream >> leds >> rate >> songLength;
    return bytes.size() >= shortest && leds >= 0 && rate >= 0.0 && rate < absurdRate && songLength % 2 == 0 &&
           songLength <= quint32(bytes.size() - headLength);
}

QByteArray writeProject(const Project &project)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << project.ledCount << project.frameRate << project.songPath;
    bool first = true;
    for (const QVector<QByteArray> &track : project.tracks) {
        if (!first) {
            stream << trackMark;
        }
        first = false;
        for (const QByteArray &blob : track) {
            stream << blob;
        }
    }
    return bytes;
}

bool isProjectPath(const QString &path)
{
    return path.contains(QLatin1String(".gsw3"));
}

} // namespace glow
