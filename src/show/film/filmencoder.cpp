#include "show/film/filmencoder.h"

#include "show/film/yuvframe.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

#include <utility>

namespace glow {

namespace {

constexpr int lookEveryMs = 100;

// A name with a colon or a leading dash is a file's name all the same.
QString asFile(const QString &path)
{
    return QStringLiteral("file:") + QFileInfo(path).absoluteFilePath();
}

QStringList words(const char *line)
{
    return QString::fromLatin1(line).split(u' ', Qt::SkipEmptyParts);
}

QString seconds(int ms)
{
    return QString::number(ms / 1000.0, 'f', 3);
}

// Cut by decoding from the start: a jump into a song lands only near its goal in formats without an index.
QStringList songArguments(const FilmPlan &plan)
{
    return {QStringLiteral("-af"),
            QStringLiteral("atrim=start=%1:end=%2,asetpts=PTS-STARTPTS").arg(seconds(plan.fromMs), seconds(plan.toMs))};
}

// The colours are chosen from the frames that come first; only then do the film's own reach the second filter, so that
// none of them has to wait in memory.
QStringList gifArguments(int paletteFrames)
{
    return {QStringLiteral("-filter_complex"),
            QStringLiteral("[0:v]split[a][b];[a]trim=end_frame=%1,palettegen[p];"
                           "[b]trim=start_frame=%1,setpts=PTS-STARTPTS[v];"
                           "[v][p]paletteuse=dither=bayer:bayer_scale=4:diff_mode=rectangle")
                .arg(paletteFrames),
            QStringLiteral("-f"), QStringLiteral("gif")};
}

QStringList videoArguments(const FilmPlan &plan)
{
    QStringList arguments = words("-map 0:v:0");
    if (!plan.songPath.isEmpty()) {
        arguments += words("-map 1:a:0") + songArguments(plan);
    }
    // A key frame every two seconds, so that players jump quickly.
    arguments +=
        words("-pix_fmt yuv420p -color_range tv -colorspace bt709 -color_primaries bt709 -color_trc bt709 -g") +
        QStringList{QString::number(2 * plan.rate)};
    return arguments + (plan.format == FilmFormat::Webm
                            ? words("-c:v libvpx-vp9 -deadline realtime -cpu-used 8 -row-mt 1 -tile-columns 2 -crf 30 "
                                    "-b:v 0 -c:a libopus -b:a 128k -f webm")
                            : words("-c:v libx264 -preset superfast -crf 20 -c:a aac -b:a 192k -movflags +faststart "
                                    "-f mp4"));
}

} // namespace

QString findEncoder()
{
    return QStandardPaths::findExecutable(QStringLiteral("ffmpeg"));
}

SongFacts askSong(const QString &path)
{
    SongFacts facts;
    if (path.isEmpty()) {
        return facts;
    }
    if (!QFileInfo(path).isFile()) {
        facts.state = SongState::Lost; // a pipe would be waited for
        return facts;
    }
    const QString program = findEncoder();
    if (program.isEmpty()) {
        facts.state = SongState::NoEncoder;
        return facts;
    }
    QProcess process;
    process.start(program, words("-hide_banner -nostdin -protocol_whitelist file -i") + QStringList{asFile(path)});
    constexpr int patienceMs = 10000;
    if (!process.waitForFinished(patienceMs)) {
        process.kill();
        process.waitForFinished();
    }
    static const QRegularExpression length(QStringLiteral("Duration: (\\d+):(\\d\\d):(\\d\\d)\\.(\\d\\d)"));
    static const QRegularExpression sound(QStringLiteral("Stream #0:\\d+.*: Audio: "));
    const QString told = QString::fromUtf8(process.readAllStandardError());
    const QRegularExpressionMatch match = length.match(told);
    facts.state = match.hasMatch() && sound.match(told).hasMatch() ? SongState::Readable : SongState::Unreadable;
    if (facts.state == SongState::Readable) {
        const int minutes = match.captured(1).toInt() * 60 + match.captured(2).toInt();
        facts.ms = (minutes * 60 + match.captured(3).toInt()) * 1000 + match.captured(4).toInt() * 10;
    }
    return facts;
}

QStringList encoderArguments(const FilmPlan &plan, const QString &file, int paletteFrames, const QString &input)
{
    const bool gif = plan.format == FilmFormat::Gif;
    // The queue lets ffmpeg read on while it encodes.
    QStringList arguments = words("-hide_banner -nostats -v error -y -thread_queue_size 8 -f rawvideo -pix_fmt");
    arguments << (gif ? QStringLiteral("bgr0") : QStringLiteral("yuv420p")) << QStringLiteral("-video_size")
              << QStringLiteral("%1x%2").arg(plan.size.width()).arg(plan.size.height()) << QStringLiteral("-framerate")
              << QString::number(plan.rate) << QStringLiteral("-i")
              << (input.isEmpty() ? QStringLiteral("pipe:0") : asFile(input));
    if (!gif && !plan.songPath.isEmpty()) {
        arguments += words("-vn -protocol_whitelist file -i") + QStringList{asFile(plan.songPath)};
    }
    arguments += gif ? gifArguments(paletteFrames) : videoArguments(plan);
    return arguments << asFile(file);
}

void encoderFrame(FilmFormat format, const QImage &picture, QByteArray &bytes)
{
    if (format == FilmFormat::Gif) {
        bytes =
            QByteArray(reinterpret_cast<const char *>(picture.constBits()), static_cast<int>(picture.sizeInBytes()));
    } else {
        toYuv420(picture, bytes);
    }
}

FilmEncoder::FilmEncoder(std::function<bool()> askToGoOn)
    : goesOn(std::move(askToGoOn))
{
}

FilmEncoder::~FilmEncoder()
{
    if (process.state() != QProcess::NotRunning) {
        process.kill();
        process.waitForFinished(-1);
    }
}

bool FilmEncoder::start(const QStringList &arguments)
{
    process.setStandardOutputFile(QProcess::nullDevice());
    process.start(findEncoder(), arguments);
    return process.waitForStarted();
}

void FilmEncoder::listen()
{
    constexpr int kept = 2000;
    words = (words + process.readAllStandardError()).right(kept);
}

bool FilmEncoder::write(const QByteArray &frame)
{
    process.write(frame);
    while (process.bytesToWrite() > 0) {
        process.waitForBytesWritten(lookEveryMs);
        listen();
        if (process.state() != QProcess::Running || !goesOn()) {
            return false;
        }
    }
    return process.state() == QProcess::Running;
}

bool FilmEncoder::finish()
{
    process.closeWriteChannel();
    while (!process.waitForFinished(lookEveryMs) && process.state() != QProcess::NotRunning) {
        listen();
        if (!goesOn()) {
            return false;
        }
    }
    listen();
    return process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

QString FilmEncoder::lastWords() const
{
    return QString::fromLocal8Bit(words).trimmed();
}

} // namespace glow
