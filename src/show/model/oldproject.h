// Projects in the old text form (".gsw"), which can be read and not written.
#pragma once

#include "show/model/patternsettings.h"

#include <QByteArray>
#include <QTime>
#include <QVector>

#include <optional>

namespace glow {

// One line of the file: when a pattern plays and the settings from which the editor makes it anew.
struct OldPattern
{
    QTime start;
    QTime end;
    PatternSettings settings;
    std::optional<int> repeats; // nothing for a colour, whose settings text has none
};

// The file is plain text, one record a line, the fields of a line separated by "><":
//
//   line 1            LEDS><RATE              both integers
//   each further one  START><END><SETTINGS    times as "mm:ss.zzz", settings as in settingstext.h
//
// There are no tracks, no song and no pictures in it.
struct OldProject
{
    bool hasProp = false; // false if line 1 does not hold both numbers; text that is no number counts as 0
    int leds = 0;
    int rate = 0; // columns per second
    QVector<OldPattern> patterns;
};

// The text is UTF-8 (or UTF-16 with a byte order mark), or else in the system's locale. A pattern's line with a missing
// field is left out: a time that cannot be read, an unknown kind, settings with fewer parts than their kind has; so is
// one that is too long to come from the editor.
OldProject readOldProject(const QByteArray &bytes);

} // namespace glow
