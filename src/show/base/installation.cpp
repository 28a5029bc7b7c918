#include "show/base/installation.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

namespace glow {

namespace {

// The host names end in ".invalid", a domain that is reserved for never existing.
const char *const defaultStore = "http://store.glowsmith.invalid/";
const char *const defaultSite = "http://www.glowsmith.invalid/";

QString configurationFile()
{
    const QString beside = QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("glowsmith.ini"));
    return QFileInfo::exists(beside) ? beside
                                     : QStandardPaths::locate(QStandardPaths::GenericConfigLocation,
                                                              QStringLiteral("glowsmith/glowsmith.ini"));
}

QUrl address(const char *variable, const QString &key, const char *fallback)
{
    QString text = qEnvironmentVariable(variable);
    if (text.isEmpty()) {
        const QString file = configurationFile();
        if (!file.isEmpty()) {
            text = QSettings(file, QSettings::IniFormat).value(key).toString();
        }
    }
    return QUrl(text.isEmpty() ? QString::fromLatin1(fallback) : text);
}

} // namespace

QUrl updateUrl()
{
    return address("GLOWSMITH_UPDATE_URL", QStringLiteral("update/url"), "");
}

QUrl storeUrl()
{
    return address("GLOWSMITH_STORE_URL", QStringLiteral("store/url"), defaultStore);
}

QUrl siteUrl()
{
    return address("GLOWSMITH_SITE_URL", QStringLiteral("site/url"), defaultSite);
}

QString manualPage(const QString &name)
{
    const QString page = QStringLiteral("glowsmith/") + name;
    const QString beside =
        QDir::cleanPath(QCoreApplication::applicationDirPath() + QStringLiteral("/../share/") + page);
    const QString shared =
        QFileInfo(beside).isFile() ? QString() : QStandardPaths::locate(QStandardPaths::GenericDataLocation, page);
    return shared.isEmpty() ? beside : shared;
}

} // namespace glow
