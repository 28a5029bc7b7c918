#include "show/model/projectfile.h"

#include <QDataStream>
#include <QIODevice>
#include <QtEndian>

#include <algorithm>
#include <cstring>
#include <limits>

namespace glow {

namespace {

const QByteArray trackMark = QByteArrayLiteral("NEXT");
constexpr quint32 nullLength = 0xFFFFFFFF;

// The stream's reading rules over bytes in memory. QDataStream itself is not used here: given an absurd length, it
// allocates megabytes before it notices that the bytes are not there.
class ByteReader
{
public:
    explicit ByteReader(const QByteArray &bytes)
        : rest(bytes.constData())
        , left(bytes.size())
    {
    }

    bool atEnd() const { return left == 0; }

    // A big-endian number; 0 when fewer bytes are left, which are used up all the same.
    template <typename T> T number()
    {
        const QByteArray bytes = take(sizeof(T));
        return bytes.isEmpty() ? T(0) : qFromBigEndian<T>(bytes.constData());
    }

    QByteArray byteArray()
    {
        const quint32 length = number<quint32>();
        return length == nullLength ? QByteArray() : take(length);
    }

    QString string()
    {
        const quint32 length = number<quint32>();
        // An odd length cannot be text; nothing behind it is used up.
        if (length == nullLength || length % 2 != 0) {
            return {};
        }
        const QByteArray utf16 = take(length);
        QString text(utf16.size() / 2, Qt::Uninitialized);
        qFromBigEndian<char16_t>(utf16.constData(), text.size(), text.data());
        return text;
    }

private:
    // So many bytes, or none when fewer are left; those are used up then.
    QByteArray take(quint32 wanted)
    {
        if (wanted > quint32(left)) {
            rest += left;
            left = 0;
            return {};
        }
        QByteArray taken(rest, int(wanted));
        rest += wanted;
        left -= int(wanted);
        return taken;
    }

    const char *rest;
    int left;
};

float narrowed(double value)
{
    constexpr auto largest = double(std::numeric_limits<float>::max());
    if (value > largest) {
        return std::numeric_limits<float>::infinity();
    }
    if (value < -largest) {
        return -std::numeric_limits<float>::infinity();
    }
    return float(value);
}

double doubleOf(quint64 bits)
{
    double value = 0;
    static_assert(sizeof value == sizeof bits, "a double is 64 bits wide");
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

} // namespace

bool Project::hasSong() const
{
    return !songPath.isEmpty() && songPath != QLatin1String("null");
}

Project readProject(const QByteArray &bytes)
{
    ByteReader reader(bytes);
    Project project;
    project.ledCount = reader.number<qint16>();
    project.frameRate = narrowed(doubleOf(reader.number<quint64>()));
    project.songPath = reader.string();
    project.tracks.resize(1);
    while (!reader.atEnd()) {
        const QByteArray item = reader.byteArray();
        if (item == trackMark) {
            project.tracks.append(QVector<QByteArray>());
        } else {
            project.tracks.last().append(item);
        }
    }
    return project;
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
