// What every test of the window starts from: settings, working directory and picture folders of its own, so that no
// test sees the user's files or another test's.
#pragma once

#include <QString>
#include <QTemporaryDir>

class QSettings;

// How long the prop may take to speak in what a test starts, milliseconds. Shorter where silence is waited for.
inline int deviceWaitMs = 5000;

class TestEnv
{
public:
    // Redirects QSettings to a fresh folder, makes a fresh working directory the current one, and stores the settings
    // of a user who has been here before (language 1, catalogue row 3). Construct it before the window.
    TestEnv();
    ~TestEnv();

    QString path(const QString &name = QString()) const; // a path in the test's own folder
    void setValue(const QString &key, const QVariant &value);
    QVariant value(const QString &key) const;

private:
    QTemporaryDir dir;
    QString oldCurrent;
};
