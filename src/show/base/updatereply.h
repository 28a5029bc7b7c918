// What the update server answers.
#pragma once

#include <QByteArray>
#include <QString>

namespace glow {

// The body is UTF-8 text. Its first line is the latest version as a decimal number; all behind that line are fields
// separated by ";;", of which the first is a note for the user that may hold HTML.
struct UpdateReply
{
    QString versionLine; // as read, with its line ending; empty if the body is
    double version = 0;  // 0 for a line that is no number
    QString note;
};

UpdateReply parseUpdateReply(const QByteArray &body);

} // namespace glow
