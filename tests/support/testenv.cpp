#include "support/testenv.h"

#include <QDir>
#include <QSettings>

TestEnv::TestEnv()
    : oldCurrent(QDir::currentPath())
{
    const QString settings = dir.filePath(QStringLiteral("settings"));
    const QString work = dir.filePath(QStringLiteral("work"));
    const QString home = dir.filePath(QStringLiteral("home"));
    QDir().mkpath(settings);
    QDir().mkpath(work);
    for (const char *name : {"Documents", "Pictures", "Music", "pictures"}) {
        QDir().mkpath(home + QLatin1Char('/') + QLatin1String(name));
    }
    qputenv("HOME", home.toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", settings.toLocal8Bit());
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings);
    QDir::setCurrent(work);
    setValue(QStringLiteral("main/language"), 1);
    setValue(QStringLiteral("main/gadget"), 3);
}

TestEnv::~TestEnv()
{
    QDir::setCurrent(oldCurrent);
}

QString TestEnv::path(const QString &name) const
{
    return name.isEmpty() ? dir.path() : dir.filePath(name);
}

void TestEnv::setValue(const QString &key, const QVariant &value)
{
    QSettings settings(QStringLiteral("Vantorel"), QStringLiteral("Glowsmith"));
    settings.setValue(key, value);
}

QVariant TestEnv::value(const QString &key) const
{
    const QSettings settings(QStringLiteral("Vantorel"), QStringLiteral("Glowsmith"));
    return settings.value(key);
}
