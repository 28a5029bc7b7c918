// Files that are read or written in one piece.
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace glow {

struct WriteResult
{
    enum State {
        Written,
        NotOpened, // the file could not be opened for writing; nothing changed
        Failed     // the write itself failed, as on a full disk; an older file of that name is as it was
    };
    State state = Written;
    QString error; // what the system said, for NotOpened and Failed
};

// Writes beside the file and moves the result over it, so that a failure or a crash never costs the older file. Where
// nothing can be written beside it, and for what is no regular file, writes straight into it, and puts the old bytes
// back if that fails.
WriteResult writeWholeFile(const QString &path, const QByteArray &bytes);

// Nothing if the path names no regular file (a pipe or a device would be read forever), if it cannot be opened or not
// be read to its end: part of a show must not pass for the whole.
std::optional<QByteArray> readWholeFile(const QString &path);

} // namespace glow
