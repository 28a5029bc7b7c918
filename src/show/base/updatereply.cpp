#include "show/base/updatereply.h"

namespace glow {

UpdateReply parseUpdateReply(const QByteArray &body)
{
    const int lineEnd = body.indexOf('\n');
    const int rest = lineEnd < 0 ? body.size() : lineEnd + 1;
    UpdateReply reply;
    reply.versionLine = QString::fromUtf8(body.left(rest));
    reply.version = reply.versionLine.toDouble();
    reply.note = QString::fromUtf8(body.mid(rest)).section(QStringLiteral(";;"), 0, 0);
    return reply;
}

} // namespace glow
