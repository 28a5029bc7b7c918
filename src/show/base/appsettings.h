// The program's settings store. Every use opens it anew, so that two running instances see each other's changes.
#pragma once

#include <QSettings>

class AppSettings : public QSettings
{
public:
    AppSettings()
        : QSettings(QStringLiteral("Vantorel"), QStringLiteral("Glowsmith"))
    {
    }
};
