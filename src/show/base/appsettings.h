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

    // The keys.
    static inline const QString versionKey = QStringLiteral("main/version");        // double, written at every start
    static inline const QString languageKey = QStringLiteral("main/language");      // int, a Language
    static inline const QString gadgetKey = QStringLiteral("main/gadget");          // int, row of the catalogue from 1
    static inline const QString pictureKey = QStringLiteral("main/currentpicpath"); // where picture dialogs start
    static inline const QString projectKey = QStringLiteral("main/currentfile");    // the project saved last
    static inline const QString sizeKey = QStringLiteral("window/size");            // QSize, at the last close
    static inline const QString maximizedKey = QStringLiteral("window/maximize");   // bool, at the last close
    static inline const QString layoutKey = QStringLiteral("layout/window");        // of the dock; these three as Qt
    static inline const QString splitterKey = QStringLiteral("layout/splitter");    // writes them, at the last close
    static inline const QString waveSplitterKey = QStringLiteral("layout/waveform");
    static inline const QString recentKey = QStringLiteral("recent/projects"); // QStringList, newest first

    enum Language { Chinese = 1, English = 2, CompleteEnglish = 3, NeverChosen = 99 };
};
