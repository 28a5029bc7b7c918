// glowsmith-cli check: what the prop will not show as drawn.
#include "cli.h"

#include "show/image/projectshow.h"
#include "show/model/showtime.h"

#include <QJsonArray>
#include <QJsonObject>

namespace cli {

namespace {

constexpr int mostEntries = 255;      // the header counts them in one byte
constexpr int mostHeaderBytes = 2048; // what the prop's side is made for
constexpr float blockMs = glow::blockMs;

struct Finding
{
    QString kind; // a word for programs
    int startMs = 0;
    int endMs = 0;
    QString text; // a sentence for people
};

QString span(int startMs, int endMs)
{
    return glow::timeText(glow::timeOf(startMs)) + QStringLiteral(" - ") + glow::timeText(glow::timeOf(endMs));
}

void checkLeadIn(const glow::DeviceShow &show, QVector<Finding> &findings)
{
    const int lead = show.patterns.first().startMs - show.startMarkMs;
    if (lead > 0 && lead <= int(blockMs)) {
        findings.append({QStringLiteral("lead-in"), show.startMarkMs, show.patterns.first().startMs,
                         QStringLiteral("the first %1 ms before the first pattern are left out").arg(lead)});
    } else if (lead < 0) {
        findings.append({QStringLiteral("before-start"), show.patterns.first().startMs, show.startMarkMs,
                         QStringLiteral("the first pattern begins %1 ms before the start mark").arg(-lead)});
    }
}

void checkNeighbours(const glow::ShowPattern &one, const glow::ShowPattern &next, QVector<Finding> &findings)
{
    const int gap = next.startMs - one.endMs;
    if (gap < 0) {
        findings.append({QStringLiteral("overlap"), next.startMs, one.endMs,
                         QStringLiteral("two patterns overlap by %1 ms: everything behind comes later").arg(-gap)});
    } else if (gap > 0 && gap <= int(blockMs)) {
        findings.append({QStringLiteral("gap"), one.endMs, next.startMs,
                         QStringLiteral("a gap of %1 ms is left out: everything behind comes earlier").arg(gap)});
    }
}

QVector<Finding> checkShow(const glow::DeviceShow &show, const QVector<glow::ImageEntry> &entries)
{
    QVector<Finding> findings;
    checkLeadIn(show, findings);
    for (int i = 0; i < show.patterns.size(); ++i) {
        const glow::ShowPattern &pattern = show.patterns.at(i);
        if (pattern.isColour && pattern.endMs - pattern.startMs < int(blockMs)) {
            findings.append({QStringLiteral("short-colour"), pattern.startMs, pattern.endMs,
                             QStringLiteral("a colour of less than %1 ms is not shown").arg(int(blockMs))});
        }
        if (i + 1 < show.patterns.size()) {
            checkNeighbours(pattern, show.patterns.at(i + 1), findings);
        }
    }
    for (const glow::ImageEntry &entry : entries) {
        if (entry.kind == glow::ImageEntry::Picture && entry.frames < 1) {
            const glow::ShowPattern &pattern = show.patterns.at(entry.pattern);
            findings.append({QStringLiteral("no-columns"), pattern.startMs, pattern.endMs,
                             QStringLiteral("the pattern is too short to get a column and is not shown")});
        }
    }
    if (entries.size() > mostEntries) {
        findings.append(
            {QStringLiteral("entries"), 0, 0,
             QStringLiteral("%1 entries: the prop's header counts at most %2").arg(entries.size()).arg(mostEntries)});
    }
    const int headerBytes = glow::imageHeader(show, entries).size();
    if (headerBytes > mostHeaderBytes) {
        findings.append(
            {QStringLiteral("header"), 0, 0,
             QStringLiteral("the header takes %1 bytes, the prop reads %2").arg(headerBytes).arg(mostHeaderBytes)});
    }
    return findings;
}

QJsonObject asJson(const QVector<Finding> &findings, const glow::DeviceShow &show,
                   const QVector<glow::ImageEntry> &entries)
{
    QJsonArray list;
    for (const Finding &finding : findings) {
        list.append(QJsonObject{{QStringLiteral("kind"), finding.kind},
                                {QStringLiteral("startMs"), finding.startMs},
                                {QStringLiteral("endMs"), finding.endMs},
                                {QStringLiteral("text"), finding.text}});
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

void printPlain(const QVector<Finding> &findings, const glow::DeviceShow &show,
                const QVector<glow::ImageEntry> &entries)
{
    for (const Finding &finding : findings) {
        print(finding.startMs == finding.endMs
                  ? finding.text
                  : span(finding.startMs, finding.endMs) + QStringLiteral("  ") + finding.text);
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

int check(const QStringList &arguments)
{
    Command command(
        QStringLiteral("check"),
        QStringLiteral(
            "Tells what the prop will not show as drawn, and how far each entry drifts from the show's time. "
            "Ends with 1 if something was found."),
        QStringLiteral("glowsmith-cli check show.gsw3 --track 2"));
    const TrackChoice choice;
    choice.addTo(command);
    const QCommandLineOption json(QStringLiteral("json"), QStringLiteral("Prints what was found as JSON."));
    command.parser.addOption(json);
    command.parser.addPositionalArgument(QStringLiteral("PROJECT"), QStringLiteral("A .gsw3 project."));
    int code = Done;
    glow::DeviceShow show;
    if (!command.parse(arguments, 1, code) || !chosenShow(command, choice, show, code)) {
        return code;
    }
    const QVector<glow::ImageEntry> entries = glow::planImage(show);
    const QVector<Finding> findings = checkShow(show, entries);
    if (command.parser.isSet(json)) {
        printJson(asJson(findings, show, entries));
    } else {
        printPlain(findings, show, entries);
    }
    return findings.isEmpty() ? Done : Failed;
}

} // namespace cli
