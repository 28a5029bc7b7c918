// The settings text of a pattern: one parser and one composer for all its readers (editor, old project files, lost
// pictures, picture library).
//
// Fields are separated by "?", groups within a field by "|"; numbers are decimal, booleans "0" or "1", colours
// "#rrggbb".
//
//   picture  0?REPEATS?PATH?GAP|FLIPH|FLIPV
//   colour   1?#rrggbb
//   text     2?REPEATS?FORE|BACK|TEXT|FONT|SIZE?SLIDE|FLIPH|FLIPV
//   effect   3?REPEATS?FRONT|BACK|ROW|MODE|WIDTH?0|FLIPH|FLIPV
//
// There is no escaping: the editor keeps the separators out of the text field; a path that holds one is not catered
// for.
#pragma once

#include "show/model/patternsettings.h"

#include <QString>

#include <optional>

namespace glow {

// A settings text that was read, which never fails: what the text lacks comes out as zeros, false and empty strings,
// and so does what is no number.
struct ParsedSettings
{
    std::optional<PatternSettings> settings; // nothing if the kind (field 0; no number counts as 0) does not exist
    std::optional<int> repeats;              // field 1; nothing with fewer than three fields, as a colour has
    bool complete = false;                   // no part that the kind needs is missing
};

ParsedSettings parseSettings(const QString &text);

// repeats is the panel's count at this moment, which a colour does not store.
QString composeSettings(const PatternSettings &settings, int repeats);

// True for a text of the days before the present kinds: it holds neither "|" nor "#". Such a pattern cannot be edited.
bool isOutdatedSettings(const QString &text);

// The text with field 2 replaced as a whole, every other byte as it was; a text of fewer than three fields comes back
// unchanged.
QString withPicturePath(const QString &text, const QString &path);

// What the editor does to typed text: "|" becomes U+2502 and "?" becomes U+FF1F.
QString withoutSeparators(QString text);

} // namespace glow
