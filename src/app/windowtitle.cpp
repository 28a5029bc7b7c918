#include "app/windowtitle.h"

namespace glow {

QString bareTitle()
{
    return QStringLiteral("Glowsmith");
}

QString titleOfProject(const QString &path)
{
    return bareTitle() + QStringLiteral(" - ") + path.section(u'/', -1) + QStringLiteral("  ");
}

QString changedTitle(QString title)
{
    if (title.size() > bareTitle().size()) {
        title[title.size() - 1] = u'*';
    }
    return title;
}

} // namespace glow
