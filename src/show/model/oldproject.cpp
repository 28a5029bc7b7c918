#include "show/model/oldproject.h"

#include "show/model/settingstext.h"

#include <QTextCodec>

namespace glow {

namespace {

const QString separator = QStringLiteral("><");

// Well above the longest text and the longest path together.
constexpr int longestLine = 100000;

QString decoded(const QByteArray &bytes)
{
    if (const QTextCodec *marked = QTextCodec::codecForUtfText(bytes, nullptr)) {
        return marked->toUnicode(bytes);
    }
    QTextCodec::ConverterState state;
    const QString text = QTextCodec::codecForMib(106)->toUnicode(bytes.constData(), bytes.size(), &state); // 106: UTF-8
    return state.invalidChars == 0 && state.remainingChars == 0 ? text : QString::fromLocal8Bit(bytes);
}

// The first three fields of a line; fewer if it has fewer, nothing for a line that the editor cannot have written.
QVector<QStringRef> fieldsOf(const QStringRef &line)
{
    return line.size() > longestLine ? QVector<QStringRef>() : line.split(separator).mid(0, 3);
}

void readProp(const QStringRef &line, OldProject &project)
{
    const QVector<QStringRef> fields = fieldsOf(line);
    project.hasProp = fields.size() >= 2;
    if (project.hasProp) {
        project.leds = fields.at(0).toInt();
        project.rate = fields.at(1).toInt();
    }
}

void readLine(const QStringRef &line, OldProject &project)
{
    const QVector<QStringRef> fields = fieldsOf(line);
    if (fields.size() < 3) {
        return;
    }
    const QString format = QStringLiteral("mm:ss.zzz");
    const QTime start = QTime::fromString(fields.at(0).toString(), format);
    const QTime end = QTime::fromString(fields.at(1).toString(), format);
    const ParsedSettings parsed = parseSettings(fields.at(2).toString());
    if (start.isValid() && end.isValid() && parsed.complete) {
        project.patterns.append({start, end, *parsed.settings, parsed.repeats});
    }
}

} // namespace

OldProject readOldProject(const QByteArray &bytes)
{
    OldProject project;
    const QString text = decoded(bytes);
    for (int from = 0; from < text.size();) {
        const int lineEnd = text.indexOf(u'\n', from);
        const int to = lineEnd < 0 ? text.size() : lineEnd;
        QStringRef line = text.midRef(from, to - from);
        if (line.endsWith(u'\r')) {
            line.chop(1);
        }
        if (from == 0) {
            readProp(line, project);
        } else {
            readLine(line, project);
        }
        from = to + 1;
    }
    return project;
}

} // namespace glow
