// Keeps a copy of the show while it is not saved. Its owner says when the show is safe; everything else this finds out
// by itself, by looking every few seconds whether the show has changed, which costs next to nothing since blobs are
// shared. The writing happens on another thread.
#pragma once

#include "show/model/projectfile.h"
#include "show/model/recoverystore.h"

#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>

class Recovery : public QObject
{
    Q_OBJECT

public:
    // The show that is open, and what it belongs to: the project's path, or the directory that was offered.
    struct OpenShow
    {
        glow::Project project;
        QString file;
        bool hasFile = false;
    };

    // present is asked for the open show at any time as long as this lives. The show of this moment counts as safe.
    Recovery(std::function<OpenShow()> present, std::unique_ptr<glow::RecoveryStore> store, QObject *parent);
    ~Recovery() override;

    // The open show is what the store found as a leftover: makes it this run's own before the earlier copy goes. Where
    // that fails, as on a full disk, the earlier copy stays until the show is saved.
    void adoptLeftover();

    // Does the show differ from what was last safe?
    bool hasUnsaved() const;

    // Looks at the show now. Tests and the end of an adoption need not wait for the timer.
    void keep();
    void waitForWriting();

public slots:
    // The show as it stands is saved, or is what was opened, or new: there is nothing to keep.
    void showIsSafe();

    // The show is saved, but under a name that does not open as a project: the copy is kept until the show is safe,
    // whatever becomes of the window.
    void showIsMisfiled();

    // Another show is open now, which is safe. What was kept of one that is misfiled is left to the next start.
    void showIsReplaced();

    // The show goes after an attempt to save it: what is not safe then is left to the next start, its last seconds
    // included.
    void showIsLeft();

    // The user has decided against the show: nothing of it is kept, unless it is misfiled and so believed to be safe.
    void discard();

public:
    QTimer timer;

private:
    std::function<OpenShow()> present;
    std::unique_ptr<glow::RecoveryStore> store;
    glow::Project safe; // the show when it was last safe
    OpenShow kept;      // as last written here
    bool isKept = false;
    bool isMisfiled = false;
    bool isOver = false;
};
