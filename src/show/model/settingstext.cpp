#include "show/model/settingstext.h"

#include <QStringList>

#include <type_traits>

namespace glow {

namespace {

const QChar fieldMark(u'?');
const QChar groupMark(u'|');

template <int kind, typename Settings>
constexpr bool isOfKind = std::is_same_v<std::variant_alternative_t<kind, PatternSettings>, Settings>;
static_assert(isOfKind<PicturePattern, PictureSettings> && isOfKind<ColourPattern, ColourSettings> &&
              isOfKind<TextPattern, TextSettings> && isOfKind<EffectPattern, EffectSettings>);

// The parts of a text. Those that it lacks read as empty.
struct Parts
{
    QStringList fields; // split at "?", empty parts kept
    QStringList values; // field 2 split at "|"; empty with fewer than three fields
    QStringList flags;  // field 3 split at "|"; empty with fewer than four fields

    QColor colour(int index) const
    {
        QColor named;
        named.setNamedColor(values.value(index));
        return named;
    }
    int number(int index) const { return values.value(index).toInt(); }
    int flagNumber(int index) const { return flags.value(index).toInt(); }
    bool flag(int index) const { return flagNumber(index) != 0; }
};

Parts split(const QString &text)
{
    Parts parts;
    parts.fields = text.split(fieldMark);
    if (parts.fields.size() >= 3) {
        parts.values = parts.fields.at(2).split(groupMark);
    }
    if (parts.fields.size() >= 4) {
        parts.flags = parts.fields.at(3).split(groupMark);
    }
    return parts;
}

PictureSettings pictureOf(const Parts &parts)
{
    return {parts.fields.value(2), parts.flagNumber(0), parts.flag(1), parts.flag(2)};
}

ColourSettings colourOf(const Parts &parts)
{
    ColourSettings settings;
    settings.colour.setNamedColor(parts.fields.value(1));
    return settings;
}

TextSettings textOf(const Parts &parts)
{
    return {parts.colour(0), parts.colour(1),     parts.values.value(2), parts.number(3),
            parts.number(4), parts.flagNumber(0), parts.flag(1),         parts.flag(2)};
}

EffectSettings effectOf(const Parts &parts)
{
    bool isNumber = false;
    const int mode = parts.values.value(3).toInt(&isNumber);
    return {parts.number(2), parts.colour(0), parts.colour(1), parts.number(4), isNumber ? mode : int(UnknownMode),
            parts.flag(1),   parts.flag(2)};
}

std::optional<PatternSettings> settingsOf(int kind, const Parts &parts)
{
    switch (kind) {
    case PicturePattern:
        return pictureOf(parts);
    case ColourPattern:
        return colourOf(parts);
    case TextPattern:
        return textOf(parts);
    case EffectPattern:
        return effectOf(parts);
    default:
        return std::nullopt;
    }
}

bool isComplete(int kind, const Parts &parts)
{
    const bool grouped = parts.fields.size() >= 4 && parts.flags.size() >= 3;
    switch (kind) {
    case PicturePattern:
        return grouped;
    case ColourPattern:
        return parts.fields.size() >= 2;
    case TextPattern:
    case EffectPattern:
        return grouped && parts.values.size() >= 5;
    default:
        return false;
    }
}

QString withGroups(PatternKind kind, int repeats, const QString &value, int first, bool flipH, bool flipV)
{
    const QStringList flags{QString::number(first), QString::number(int(flipH)), QString::number(int(flipV))};
    return QStringList{QString::number(kind), QString::number(repeats), value, flags.join(groupMark)}.join(fieldMark);
}

QString compose(const PictureSettings &settings, int repeats)
{
    return withGroups(PicturePattern, repeats, settings.path, settings.gap, settings.flipH, settings.flipV);
}

QString compose(const ColourSettings &settings, int /*repeats*/)
{
    return QString::number(ColourPattern) + fieldMark + settings.colour.name();
}

QString compose(const TextSettings &settings, int repeats)
{
    const QStringList values{settings.fore.name(), settings.back.name(), settings.text, QString::number(settings.font),
                             QString::number(settings.sizeIndex)};
    return withGroups(TextPattern, repeats, values.join(groupMark), settings.slide, settings.flipH, settings.flipV);
}

QString compose(const EffectSettings &settings, int repeats)
{
    const QStringList values{settings.front.name(), settings.back.name(), QString::number(settings.row),
                             QString::number(settings.mode), QString::number(settings.width)};
    return withGroups(EffectPattern, repeats, values.join(groupMark), 0, settings.flipH, settings.flipV);
}

} // namespace

ParsedSettings parseSettings(const QString &text)
{
    const Parts parts = split(text);
    const int kind = parts.fields.value(0).toInt();
    ParsedSettings parsed;
    parsed.settings = settingsOf(kind, parts);
    if (parts.fields.size() >= 3) {
        parsed.repeats = parts.fields.at(1).toInt();
    }
    parsed.complete = isComplete(kind, parts);
    return parsed;
}

QString composeSettings(const PatternSettings &settings, int repeats)
{
    return std::visit([repeats](const auto &ofKind) { return compose(ofKind, repeats); }, settings);
}

bool isOutdatedSettings(const QString &text)
{
    return !text.contains(groupMark) && !text.contains(u'#');
}

QString withPicturePath(const QString &text, const QString &path)
{
    QStringList fields = text.split(fieldMark);
    if (fields.size() < 3) {
        return text;
    }
    fields[2] = path;
    return fields.join(fieldMark);
}

QString withoutSeparators(QString text)
{
    return text.replace(groupMark, QChar(0x2502)).replace(fieldMark, QChar(0xFF1F));
}

} // namespace glow
