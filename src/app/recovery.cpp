#include "app/recovery.h"

#include "app/mainwindow.h"
#include "show/base/wholefile.h"

#include <QFile>
#include <QRunnable>
#include <QThreadPool>

namespace {

// A change is on disk at the latest this long after it was made, plus what the writing takes.
constexpr int lookEveryMs = 2000;

bool sameBlobs(const QVector<QByteArray> &a, const QVector<QByteArray> &b)
{
    if (a.size() != b.size()) {
        return false;
    }
    for (int i = 0; i < a.size(); ++i) {
        // Most blobs are shared with the items and need no look at their bytes.
        const bool shared = a.at(i).constData() == b.at(i).constData() && a.at(i).size() == b.at(i).size();
        if (!shared && a.at(i) != b.at(i)) {
            return false;
        }
    }
    return true;
}

bool sameShow(const glow::Project &a, const glow::Project &b)
{
    if (a.ledCount != b.ledCount || a.frameRate != b.frameRate || a.songPath != b.songPath ||
        a.tracks.size() != b.tracks.size()) {
        return false;
    }
    for (int i = 0; i < a.tracks.size(); ++i) {
        if (!sameBlobs(a.tracks.at(i), b.tracks.at(i))) {
            return false;
        }
    }
    return true;
}

class WriteShow : public QRunnable
{
public:
    WriteShow(const QString &target, const glow::UnsavedShow &unsaved, const glow::Project &content)
        : path(target)
        , show(unsaved)
        , project(content)
    {
    }

    void run() override
    {
        show.project = glow::writeProject(project);
        glow::writeWholeFile(path, glow::writeUnsaved(show));
    }

private:
    QString path;
    glow::UnsavedShow show;
    glow::Project project;
};

// One thread, so that what was written later stands later.
QThreadPool &writer()
{
    static QThreadPool pool;
    pool.setMaxThreadCount(1);
    return pool;
}

} // namespace

Recovery::Recovery(MainWindow *owner, std::unique_ptr<glow::RecoveryStore> place)
    : QObject(owner)
    , window(owner)
    , store(std::move(place))
{
    safe = window->asProject();
    connect(&timer, &QTimer::timeout, this, &Recovery::keep);
    timer.start(lookEveryMs);
}

Recovery::~Recovery()
{
    waitForWriting();
}

void Recovery::restore(const glow::UnsavedShow &show)
{
    window->restoreShow(show);
    safe = glow::Project(); // no file holds this show, even if it is empty
    keep();
    waitForWriting();
    if (QFile::exists(store->path())) {
        store->forgetLeftover();
    }
}

void Recovery::showIsSafe()
{
    safe = window->asProject();
    kept = glow::Project();
    isKept = false;
    waitForWriting();
    store->remove();
}

bool Recovery::hasUnsaved() const
{
    return !sameShow(window->asProject(), safe);
}

void Recovery::discard()
{
    isOver = true;
    timer.stop();
    waitForWriting();
    store->remove();
}

void Recovery::keep()
{
    if (isOver || store->path().isEmpty()) {
        return;
    }
    const glow::Project present = window->asProject();
    if (sameShow(present, safe)) {
        if (isKept) {
            showIsSafe();
        }
        return;
    }
    if (isKept && keptFile == window->currentFile && keptHasFile == window->hasFile && sameShow(present, kept)) {
        return;
    }
    kept = present;
    keptFile = window->currentFile;
    keptHasFile = window->hasFile;
    isKept = true;
    writer().start(new WriteShow(store->path(), {QByteArray(), keptFile, keptHasFile}, present));
}

void Recovery::waitForWriting()
{
    writer().waitForDone();
}
