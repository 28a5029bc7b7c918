// glowsmith-cli check: what the prop will not show as drawn.
#include "cli.h"

#include "show/image/findingwords.h"
#include "show/image/showcheck.h"

#include <QJsonArray>
#include <QJsonObject>

namespace cli {

namespace {

// A word for programs.
QString wordOf(const glow::Finding &finding)
{
    static const QStringList words = {QStringLiteral("lead-in"),      QStringLiteral("before-start"),
                                      QStringLiteral("overlap"),      QStringLiteral("gap"),
                                      QStringLiteral("short-colour"), QStringLiteral("no-columns"),
                                      QStringLiteral("entries"),      QStringLiteral("header")};
    return words.at(finding.kind);
}

QJsonObject asJson(const QVector<glow::Finding> &findings, const glow::DeviceShow &show,
                   const QVector<glow::ImageEntry> &entries)
{
    QJsonArray list;
    for (const glow::Finding &finding : findings) {
        list.append(QJsonObject{{QStringLiteral("kind"), wordOf(finding)},
                                {QStringLiteral("startMs"), finding.startMs},
                                {QStringLiteral("endMs"), finding.endMs},
                                {QStringLiteral("text"), glow::sentenceOf(finding)}});
    }
    QJsonArray drifts;
    for (const glow::ImageEntry &entry : entries) {
        drifts.append(
            QJsonObject{{QStringLiteral("pattern"), entry.pattern},
                        {QStringLiteral("repeat"), entry.repeat},
                        {QStringLiteral("frames"), entry.frames},
                        {QStringLiteral("driftFrames"), double(entry.drift)},
                        {QStringLiteral("driftMs"), double(entry.drift) * 1000.0 / qMax(1.0F, show.frameRate)}});
    }
    return {{QStringLiteral("findings"), list}, {QStringLiteral("entries"), drifts}};
}

void printPlain(const QVector<glow::Finding> &findings, const glow::DeviceShow &show,
                const QVector<glow::ImageEntry> &entries)
{
    for (const glow::Finding &finding : findings) {
        print(glow::lineOf(finding));
    }
    print(QStringLiteral("entry  pattern  repeats  frames  drift behind it"));
    int number = 0;
    for (const glow::ImageEntry &entry : entries) {
        const QString pattern = entry.pattern < 0 ? QStringLiteral("blank") : QString::number(entry.pattern + 1);
        print(QStringLiteral("%1  %2  %3  %4  %5 ms")
                  .arg(++number, 5)
                  .arg(pattern, 7)
                  .arg(entry.repeat, 7)
                  .arg(entry.storedFrames(), 6)
                  .arg(double(entry.drift) * 1000.0 / qMax(1.0F, show.frameRate), 0, 'f', 2));
    }
    print(QStringLiteral("%1 found").arg(findings.size()));
}

} // namespace

ExitCode check(const Call &call, const glow::DeviceShow &show)
{
    const QVector<glow::ImageEntry> entries = glow::planImage(show);
    const QVector<glow::Finding> findings = glow::checkShow(show, entries);
    if (call.isSet("json")) {
        printJson(asJson(findings, show, entries));
    } else {
        printPlain(findings, show, entries);
    }
    return findings.isEmpty() ? Done : Failed;
}

} // namespace cli
