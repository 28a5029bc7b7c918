// The settings text of a pattern: one parser and one composer for all its readers (editor, old project files, lost
// pictures, picture library).
//
// Fields are separated by "?", groups within a field by "|"; numbers are decimal, booleans "0" or "1", colours
// "#rrggbb".
//
//   picture  0?LOOP?PATH?GAP|REVH|REVV
//   colour   1?#rrggbb
//   text     2?LOOP?FORE|BACK|TEXT|FONT|SIZE?SLIDE|REVH|REVV
//   effect   3?LOOP?FORE|BACK|ROW|MODE|WIDTH?0|REVH|REVV
//
// There is no escaping: the editor keeps the separators out of the text field; a path that holds one is not catered
// for.
#pragma once

#include <QColor>
#include <QString>
#include <QStringList>

namespace glow {

struct SettingsText
{
    QStringList fields; // split at "?", empty parts kept
    QStringList values; // field 2 split at "|"; empty with fewer than three fields
    QStringList flags;  // field 3 split at "|"; empty with fewer than four fields

    int kind() const;                // field 0 as an integer; text that is no number gives 0, as does an empty text
    int loop() const;                // field 1 as an integer
    bool hasGroups() const;          // three fields or more: all kinds but the colour
    bool isPicture() const;          // field 0 reads 0 and the text is not empty
    QString picturePath() const;     // field 2 whole
    QString value(int index) const;  // empty when absent
    bool flag(int index) const;      // absent counts as false
    int flagNumber(int index) const; // absent counts as 0
};

// True for a text of the days before the present kinds: it holds neither "|" nor "#". Such a pattern cannot be edited.
bool isOutdatedSettings(const QString &text);

SettingsText parseSettings(const QString &text);

// The text with field 2 replaced as a whole; a text of fewer than three fields comes back unchanged.
QString withPicturePath(const QString &text, const QString &path);

QString composePicture(int loop, const QString &path, int gap, bool revH, bool revV);
QString composeColour(const QColor &fore);
QString composeText(int loop, const QColor &fore, const QColor &back, const QString &text, int fontIndex, int sizeIndex,
                    int slide, bool revH, bool revV);
QString composeEffect(int loop, const QColor &fore, const QColor &back, int row, int mode, int width, bool revH,
                      bool revV);

// What the editor does to typed text: "|" becomes U+2502 and "?" becomes U+FF1F.
QString withoutSeparators(QString text);

} // namespace glow
