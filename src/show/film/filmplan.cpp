#include "show/film/filmplan.h"

#include "show/film/filmrenderer.h"
#include "show/image/projectshow.h"
#include "show/model/patternrecord.h"
#include "show/model/projectfile.h"
#include "show/model/showtime.h"

#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <utility>

namespace glow {

namespace {

bool isVideoSide(int side)
{
    return side >= leastFilmSide && side <= mostFilmSide && side % 2 == 0;
}

QVector<FilmTrack> chosenTracks(const FilmShow &show, int number)
{
    QVector<FilmTrack> chosen;
    for (const FilmTrack &track : show.tracks) {
        if (number == allTracks || track.number == number) {
            chosen.append(track);
        }
    }
    return chosen;
}

FilmError checkTracks(const FilmShow &show, const FilmOptions &options, QString &detail)
{
    const QVector<FilmTrack> tracks = chosenTracks(show, options.track);
    detail = QString::number(options.track);
    if (tracks.isEmpty()) {
        return options.track == allTracks ? FilmError::EmptyShow : FilmError::NoSuchTrack;
    }
    if (std::all_of(tracks.begin(), tracks.end(), [](const FilmTrack &track) { return track.endMs() == 0; })) {
        return options.track == allTracks ? FilmError::EmptyShow : FilmError::EmptyTrack;
    }
    return show.leds <= 0 ? FilmError::NoLeds : FilmError::None;
}

FilmError checkPicture(const FilmOptions &options, FilmFormat format)
{
    if (!isVideoSide(options.size.width()) || !isVideoSide(options.size.height())) {
        return FilmError::BadSize;
    }
    if (options.rate < 1 || options.rate > mostFilmRate) {
        return FilmError::BadRate;
    }
    return format == FilmFormat::Gif && options.rate > mostGifRate ? FilmError::BadGifRate : FilmError::None;
}

FilmError checkTimes(int fromMs, int toMs, bool toEnd, FilmFormat format, QString &detail)
{
    if (fromMs >= toMs) {
        detail = filmTimeText(toMs);
        return toEnd ? FilmError::FromBehindEnd : FilmError::FromBehindTo;
    }
    detail = filmTimeText(toMs - fromMs);
    if (toMs - fromMs > longestFilmMs) {
        return FilmError::TooLong;
    }
    return format == FilmFormat::Gif && toMs - fromMs > longestGifMs ? FilmError::GifTooLong : FilmError::None;
}

} // namespace

int FilmTrack::endMs() const
{
    int end = 0;
    for (const PropPattern &pattern : patterns) {
        end = std::max(end, pattern.endMs);
    }
    return end;
}

FilmShow filmShow(const Project &project)
{
    FilmShow show;
    show.leds = shownLeds(project);
    show.songPath = project.hasSong() ? project.songPath : QString();
    for (int i = 0; i < project.tracks.size(); ++i) {
        FilmTrack track;
        track.number = i + 1;
        const QVector<PatternRecord> records = exportedPatterns(project, i);
        for (const PatternRecord &record : records) {
            track.patterns.append(
                {msOf(record.startTime), msOf(record.endTime), record.thumbnail.toImage(), record.repeatCount});
        }
        show.tracks.append(track);
    }
    return show;
}

int FilmPlan::frames() const
{
    if (format == FilmFormat::Png) {
        return 1;
    }
    const qint64 length = qint64(toMs - fromMs) * rate;
    return static_cast<int>(std::max<qint64>(1, (length + 500) / 1000));
}

int FilmPlan::timeOfFrame(int frame) const
{
    return fromMs + static_cast<int>(qint64(frame) * 1000 / rate);
}

std::optional<FilmFormat> filmFormat(const QString &goal)
{
    const QString suffix = QFileInfo(goal).suffix().toLower();
    for (const auto &[name, format] : {std::pair("mp4", FilmFormat::Mp4), std::pair("webm", FilmFormat::Webm),
                                       std::pair("gif", FilmFormat::Gif), std::pair("png", FilmFormat::Png)}) {
        if (suffix == QLatin1String(name)) {
            return format;
        }
    }
    return std::nullopt;
}

int filmEndMs(const FilmShow &show, const FilmOptions &options, int songMs)
{
    int end = options.song ? songMs : 0;
    const QVector<FilmTrack> tracks = chosenTracks(show, options.track);
    for (const FilmTrack &track : tracks) {
        end = std::max(end, track.endMs());
    }
    return end;
}

PlannedFilm planFilm(const FilmShow &show, const FilmOptions &options, int songMs)
{
    PlannedFilm planned;
    const std::optional<FilmFormat> format = filmFormat(options.goal);
    if (!format) {
        planned.error = FilmError::UnknownFormat;
        planned.detail = options.goal;
        return planned;
    }
    planned.error = checkPicture(options, *format);
    if (planned.error == FilmError::None) {
        planned.error = checkTracks(show, options, planned.detail);
    }
    const bool toEnd = options.toMs == untilTheEnd;
    const int toMs = toEnd ? filmEndMs(show, options, songMs) : options.toMs;
    if (planned.error == FilmError::None && *format != FilmFormat::Png) {
        planned.error = checkTimes(options.fromMs, toMs, toEnd, *format, planned.detail);
    }
    const QVector<FilmTrack> tracks = chosenTracks(show, options.track);
    if (planned.error == FilmError::None && gridOf(tracks.size(), options.size).isEmpty()) {
        planned.error = FilmError::TooManyTracks;
    }
    if (planned.error != FilmError::None) {
        return planned;
    }
    planned.plan = {options.goal,    *format,      show.leds,
                    tracks,          options.size, options.rate,
                    options.fromMs,  toMs,         options.song && songMs > options.fromMs ? show.songPath : QString(),
                    options.timeCode};
    return planned;
}

QSize parseFilmSize(const QString &text)
{
    static const QRegularExpression form(QStringLiteral("^\\s*(\\d{1,5})\\s*[xX×]\\s*(\\d{1,5})\\s*$"));
    const QRegularExpressionMatch match = form.match(text);
    return match.hasMatch() ? QSize(match.captured(1).toInt(), match.captured(2).toInt()) : QSize();
}

std::optional<int> parseFilmTime(const QString &text)
{
    static const QRegularExpression form(
        QStringLiteral("^(?:(\\d{1,9})|(?:(\\d{1,2}):)?(\\d{1,4}):([0-5]\\d)(?:\\.(\\d{1,3}))?)$"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    qint64 ms = match.captured(1).toLongLong();
    if (match.capturedLength(1) == 0) {
        const qint64 minutes = match.captured(2).toInt() * 60 + match.captured(3).toInt();
        ms = (minutes * 60 + match.captured(4).toInt()) * 1000 + match.captured(5).leftJustified(3, u'0').toInt();
    }
    return ms < msPerDay ? std::optional<int>(static_cast<int>(ms)) : std::nullopt;
}

QString filmTimeText(int ms)
{
    constexpr int msPerHour = 60 * 60 * 1000;
    const QString text = timeText(timeOf(ms));
    return ms < msPerHour ? text : QStringLiteral("%1:%2").arg(ms / msPerHour).arg(text);
}

} // namespace glow
