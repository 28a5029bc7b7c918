#include "show/model/settingstext.h"

namespace glow {

namespace {

const QChar fieldMark(u'?');
const QChar groupMark(u'|');

QString flagText(bool on)
{
    return on ? QStringLiteral("1") : QStringLiteral("0");
}

QString withGroups(int kind, int loop, const QString &value, const QString &first, bool revH, bool revV)
{
    const QStringList flags{first, flagText(revH), flagText(revV)};
    return QStringList{QString::number(kind), QString::number(loop), value, flags.join(groupMark)}.join(fieldMark);
}

} // namespace

int SettingsText::kind() const
{
    return fields.value(0).toInt();
}

int SettingsText::loop() const
{
    return fields.value(1).toInt();
}

bool SettingsText::hasGroups() const
{
    return fields.size() >= 3;
}

bool SettingsText::isPicture() const
{
    const bool empty = fields.isEmpty() || (fields.size() == 1 && fields.first().isEmpty());
    return !empty && kind() == 0;
}

QString SettingsText::picturePath() const
{
    return fields.value(2);
}

QString SettingsText::value(int index) const
{
    return values.value(index);
}

bool SettingsText::flag(int index) const
{
    return flagNumber(index) != 0;
}

int SettingsText::flagNumber(int index) const
{
    return flags.value(index).toInt();
}

bool isOutdatedSettings(const QString &text)
{
    return !text.contains(groupMark) && !text.contains(u'#');
}

SettingsText parseSettings(const QString &text)
{
    SettingsText settings;
    settings.fields = text.split(fieldMark);
    if (settings.fields.size() >= 3) {
        settings.values = settings.fields.at(2).split(groupMark);
    }
    if (settings.fields.size() >= 4) {
        settings.flags = settings.fields.at(3).split(groupMark);
    }
    return settings;
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

QString composePicture(int loop, const QString &path, int gap, bool revH, bool revV)
{
    return withGroups(0, loop, path, QString::number(gap), revH, revV);
}

QString composeColour(const QColor &fore)
{
    return QStringLiteral("1?") + fore.name();
}

QString composeText(int loop, const QColor &fore, const QColor &back, const QString &text, int fontIndex, int sizeIndex,
                    int slide, bool revH, bool revV)
{
    const QStringList values{fore.name(), back.name(), text, QString::number(fontIndex), QString::number(sizeIndex)};
    return withGroups(2, loop, values.join(groupMark), QString::number(slide), revH, revV);
}

QString composeEffect(int loop, const QColor &fore, const QColor &back, int row, int mode, int width, bool revH,
                      bool revV)
{
    const QStringList values{fore.name(), back.name(), QString::number(row), QString::number(mode),
                             QString::number(width)};
    return withGroups(3, loop, values.join(groupMark), QStringLiteral("0"), revH, revV);
}

QString withoutSeparators(QString text)
{
    return text.replace(groupMark, QChar(0x2502)).replace(fieldMark, QChar(0xFF1F));
}

} // namespace glow
