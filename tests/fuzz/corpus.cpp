#include "targets.h"

#include "show/image/binfile.h"
#include "show/image/deviceimage.h"
#include "show/image/projectshow.h"
#include "show/model/projectfile.h"
#include "support/samples.h"

#include <QBuffer>

namespace fuzz {

namespace {

// A pattern of each kind, in the order of their numbers.
QByteArray pattern(int kind, int start, int end, int speed = 0)
{
    const char *const settings[] = {"0?2?/gone/a.png?20|1|0", "1?#010203", "2?1?#ff0000|#000000|abc 光|0|2?30|0|1",
                                    "3?4?#00ff00|#0000ff|5|1|60?0|1|0"};
    return patternBlob(settings[kind], start, end - start, QColor(200, 40 * kind, 10), 3, speed);
}

glow::Project project(int tracks, const QString &song = "null")
{
    glow::Project show{36, 600, song, {}};
    for (int track = 0; track < tracks; ++track) {
        QVector<QByteArray> blobs;
        for (int kind = 0; kind < 4 && track != 1; ++kind) {
            blobs << pattern(kind, kind * 700, kind * 700 + 500, kind * 9);
        }
        show.tracks << blobs;
    }
    return show;
}

QByteArray bin(int leds, bool loop)
{
    glow::Project source = project(1);
    source.ledCount = qint16(leds);
    source.frameRate = 40;
    source.tracks[0] = source.tracks[0].mid(0, 2);
    QBuffer data;
    QBuffer header;
    QBuffer out;
    for (QBuffer *buffer : {&data, &header, &out}) {
        buffer->open(QIODevice::ReadWrite);
    }
    glow::ShowOptions options;
    options.loop = loop;
    glow::writeDeviceImage(glow::showOfTrack(source, 0, options), data, header);
    data.seek(0);
    header.seek(0);
    glow::writeBin(header, data, out);
    return out.data();
}

const QByteArray oldShow = "80><1600\n"
                           "00:00.000><00:01.500><1?#ff0000\n"
                           "00:02.000><00:03.000><0?2?/gone/a.png?20|0|1\n"
                           "00:04.000><00:05.250><2?1?#ff0000|#000000|abc|0|2?30|0|1\r\n"
                           "00:06.000><00:07.000><3?4?#00ff00|#0000ff|5|1|60?0|1|0\n";

} // namespace

QMap<QString, QByteArray> corpus(const QString &target)
{
    const auto show = [](int tracks) { return glow::writeProject(project(tracks)); };
    const QByteArray song = glow::writeProject(project(1, "/gone/song.mp3"));
    const QByteArray newForm(1, '\0'); // the first byte tells the window the form
    const QMap<QString, QMap<QString, QByteArray>> all{
        {"project", {{"empty", show(0)}, {"one", show(1)}, {"three", show(3)}, {"song", song}}},
        {"oldproject", {{"utf8", oldShow}, {"utf16", QByteArray("\xFF\xFE\x38\0\x30\0\x3E\0\x3C\0\x31\0\n\0", 14)}}},
        {"blob",
         {{"picture", pattern(0, 0, 5000, 30)},
          {"colour", pattern(1, 5000, 100)},
          {"text", pattern(2, 1, 2)},
          {"effect", pattern(3, 86399000, 86399999)}}},
        {"bin", {{"loop", bin(2, true)}, {"once", bin(3, false)}, {"none", bin(0, true)}}},
        {"device",
         {{"greeting", "\x04" + QByteArray("Glow prop 1.2\r\nReady\r\n")},
          {"wait", "\x02" + QByteArray("Wait...\0Wait\n", 13)},
          {"refusal", "\x09" + QByteArray("ERR: slot 7\n\xE5\x85\x89")}}},
        {"update", {{"same", "3.104\n"}, {"newer", "9.9\n<b>note</b><br>\xE5\x85\x89;;more;;fields"}, {"none", ""}}},
        {"window", {{"old", "\x01" + oldShow}, {"new", newForm + show(3)}, {"song", newForm + song}}}};
    return all.value(target);
}

} // namespace fuzz
