// What the prop will not show as drawn, as values: the rules for the eye of the command line and of the window.
#pragma once

#include <QVector>

namespace glow {

struct DeviceShow;
struct ImageEntry;

// The header counts the entries in one byte.
constexpr int mostEntries = 255;

// What the prop takes of a header, in bytes.
constexpr int mostHeaderBytes = 2048;

struct Finding
{
    enum Kind {
        LeadIn,      // amount: milliseconds before the first pattern that are left out
        BeforeStart, // amount: milliseconds by which the first pattern begins before the start mark
        Overlap,     // amount: milliseconds that two patterns share; everything behind comes later
        Gap,         // amount: milliseconds between two patterns that are left out; everything behind comes earlier
        ShortColour, // amount: milliseconds of a colour that is too short to be shown
        NoColumns,   // a picture that is too short to get a column; amount: 0
        Entries,     // amount: entries, more than the header can count
        Header       // amount: bytes of the header, more than the prop reads
    };
    Kind kind = Gap;
    int startMs = 0; // the stretch of show time that is concerned; both 0 when it is the show as a whole
    int endMs = 0;
    qint64 amount = 0; // above 0, but for a colour that ends before it starts
    qint64 limit = 0;  // what the amount is held against: blockMs, mostEntries or mostHeaderBytes; 0 for the others
};

// Everything that is found, in the order of the show; entries are those of planImage. Untrusted times are welcome.
QVector<Finding> checkShow(const DeviceShow &show, const QVector<ImageEntry> &entries);

} // namespace glow
