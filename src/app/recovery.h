// Keeps a copy of the show while it is not saved. The window tells when the show is safe; everything else this finds
// out by itself, by looking every few seconds whether the show has changed, which costs next to nothing since blobs are
// shared. The writing happens on another thread.
#pragma once

#include "show/model/projectfile.h"
#include "show/model/recoverystore.h"

#include <QObject>
#include <QTimer>

#include <memory>

class MainWindow;

class Recovery : public QObject
{
    Q_OBJECT

public:
    Recovery(MainWindow *window, std::unique_ptr<glow::RecoveryStore> store);
    ~Recovery() override;

    // Opens what an earlier run left, and makes it this run's own before the earlier copy goes. Where that fails, as on
    // a full disk, the earlier copy stays until the show is saved.
    void restore(const glow::UnsavedShow &show);

    // The show as it stands is saved, or is what was opened, or new: there is nothing to keep.
    void showIsSafe();

    // Does the show differ from what was last safe?
    bool hasUnsaved() const;

    // The user has decided about the show: nothing of it is kept.
    void discard();

    // Looks at the show now. Tests and the end of a restore need not wait for the timer.
    void keep();
    void waitForWriting();

    QTimer timer;

private:
    MainWindow *window;
    std::unique_ptr<glow::RecoveryStore> store;
    glow::Project safe; // the show when it was last safe
    glow::Project kept; // the show as last written here, and what it belonged to
    QString keptFile;
    bool keptHasFile = false;
    bool isKept = false;
    bool isOver = false;
};
