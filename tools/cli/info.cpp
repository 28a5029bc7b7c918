// glowsmith-cli info: what a project holds.
#include "cli.h"

#include "show/model/gadgetcatalogue.h"
#include "show/model/missingpictures.h"
#include "show/model/patternrecord.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonObject>

namespace cli {

namespace {

QString kindName(int kind)
{
    static const QStringList names = {QStringLiteral("picture"), QStringLiteral("colour"), QStringLiteral("text"),
                                      QStringLiteral("effect")};
    return names.value(kind, QStringLiteral("unknown"));
}

QJsonObject describePattern(const glow::PatternRecord &record)
{
    QJsonObject pattern{{QStringLiteral("kind"), kindName(record.patternKind)},
                        {QStringLiteral("startMs"), glow::msOf(record.startTime)},
                        {QStringLiteral("endMs"), glow::msOf(record.endTime)},
                        {QStringLiteral("repeats"), record.repeatCount},
                        {QStringLiteral("speed"), record.speedValue}};
    if (const std::optional<QString> path = glow::sourcePicture(record.settingsText)) {
        pattern[QStringLiteral("picture")] = *path;
        pattern[QStringLiteral("lost")] = glow::isPictureLost(record.settingsText);
    }
    return pattern;
}

QJsonObject describe(const glow::Project &project)
{
    const QVector<glow::Gadget> gadgets = glow::builtInGadgets();
    const int row = glow::findGadget(gadgets, project.ledCount, project.frameRate);
    QJsonArray tracks;
    int lost = 0;
    for (const QVector<QByteArray> &blobs : project.tracks) {
        QJsonArray patterns;
        for (const QByteArray &blob : blobs) {
            const QJsonObject pattern = describePattern(glow::readPattern(blob));
            lost += pattern.value(QStringLiteral("lost")).toBool() ? 1 : 0;
            patterns.append(pattern);
        }
        tracks.append(patterns);
    }
    return {{QStringLiteral("leds"), project.ledCount},
            {QStringLiteral("columnRate"), double(project.frameRate)},
            {QStringLiteral("prop"), row < 0 ? QJsonValue() : QJsonValue(gadgets.at(row).name)},
            {QStringLiteral("song"), project.hasSong() ? QJsonValue(project.songPath) : QJsonValue()},
            {QStringLiteral("songLost"), project.hasSong() && !QFile::exists(project.songPath)},
            {QStringLiteral("tracks"), tracks},
            {QStringLiteral("lostPictures"), lost}};
}

QString lineOf(const QJsonObject &pattern)
{
    const auto time = [&pattern](const QString &key) {
        return glow::timeText(glow::timeOf(pattern.value(key).toInt()));
    };
    QString line = QStringLiteral("  %1 - %2  %3 x%4")
                       .arg(time(QStringLiteral("startMs")), time(QStringLiteral("endMs")))
                       .arg(pattern.value(QStringLiteral("kind")).toString(), -8)
                       .arg(pattern.value(QStringLiteral("repeats")).toInt());
    if (pattern.contains(QStringLiteral("picture"))) {
        line += QStringLiteral("  ") + pattern.value(QStringLiteral("picture")).toString();
    }
    if (pattern.value(QStringLiteral("lost")).toBool()) {
        line += QStringLiteral(" (lost)");
    }
    return line;
}

void printPlain(const QJsonObject &facts)
{
    const QString prop = facts.value(QStringLiteral("prop")).toString(QStringLiteral("custom prop"));
    print(QStringLiteral("prop          %1, %2 LEDs, %3 columns a second")
              .arg(prop)
              .arg(facts.value(QStringLiteral("leds")).toInt())
              .arg(facts.value(QStringLiteral("columnRate")).toDouble()));
    const QString lostSong = facts.value(QStringLiteral("songLost")).toBool() ? QStringLiteral(" (lost)") : QString();
    print(QStringLiteral("song          ") + facts.value(QStringLiteral("song")).toString(QStringLiteral("none")) +
          lostSong);
    print(QStringLiteral("lost pictures %1").arg(facts.value(QStringLiteral("lostPictures")).toInt()));
    int number = 0;
    const QJsonArray tracks = facts.value(QStringLiteral("tracks")).toArray();
    for (const QJsonValue &track : tracks) {
        const QJsonArray patterns = track.toArray();
        print(QStringLiteral("track %1       %2 patterns").arg(++number).arg(patterns.size()));
        for (const QJsonValue &pattern : patterns) {
            print(lineOf(pattern.toObject()));
        }
    }
}

} // namespace

ExitCode info(const Call &call)
{
    const std::optional<glow::Project> project = openProject(call.operand());
    if (!project) {
        return Failed;
    }
    const QJsonObject facts = describe(*project);
    if (call.isSet("json")) {
        printJson(facts);
    } else {
        printPlain(facts);
    }
    return Done;
}

} // namespace cli
