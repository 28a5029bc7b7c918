#include "app/recovery.h"

#include "show/base/wholefile.h"
#include "show/model/patternrecord.h"

#include <QFile>
#include <QRunnable>
#include <QThreadPool>

#include <algorithm>
#include <utility>

namespace {

// A change is on disk at the latest this long after it was made, plus what the writing takes.
constexpr int lookEveryMs = 2000;

bool sameTrack(const QVector<QByteArray> &a, const QVector<QByteArray> &b)
{
    return std::equal(a.cbegin(), a.cend(), b.cbegin(), b.cend(), glow::sameBlob);
}

bool sameShow(const glow::Project &a, const glow::Project &b)
{
    return a.ledCount == b.ledCount && a.frameRate == b.frameRate && a.songPath == b.songPath &&
           std::equal(a.tracks.cbegin(), a.tracks.cend(), b.tracks.cbegin(), b.tracks.cend(), sameTrack);
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

Recovery::Recovery(std::function<OpenShow()> openShow, std::unique_ptr<glow::RecoveryStore> place, QObject *parent)
    : QObject(parent)
    , present(std::move(openShow))
    , store(std::move(place))
    , safe(present().project)
{
    connect(&timer, &QTimer::timeout, this, &Recovery::keep);
    timer.start(lookEveryMs);
}

Recovery::~Recovery()
{
    waitForWriting();
}

void Recovery::adoptLeftover()
{
    safe = glow::Project(); // no file holds this show, even if it is empty
    keep();
    waitForWriting();
    if (QFile::exists(store->path())) {
        store->forgetLeftover();
    }
}

void Recovery::showIsMisfiled()
{
    isMisfiled = true;
    safe = glow::Project(); // no project holds this show
    keep();
}

void Recovery::showIsReplaced()
{
    if (isMisfiled) {
        waitForWriting();
        store->setAside();
    }
    showIsSafe();
}

void Recovery::showIsSafe()
{
    isMisfiled = false;
    safe = present().project;
    kept = OpenShow();
    isKept = false;
    waitForWriting();
    store->remove();
}

bool Recovery::hasUnsaved() const
{
    return !sameShow(present().project, safe);
}

void Recovery::showIsLeft()
{
    if (hasUnsaved()) {
        keep();
    } else {
        discard();
    }
}

void Recovery::discard()
{
    isOver = true;
    timer.stop();
    waitForWriting();
    if (!isMisfiled) {
        store->remove();
    }
}

void Recovery::keep()
{
    if (isOver || store->path().isEmpty()) {
        return;
    }
    const OpenShow show = present();
    if (sameShow(show.project, safe)) {
        if (isKept) {
            showIsSafe();
        }
        return;
    }
    if (isKept && kept.file == show.file && kept.hasFile == show.hasFile && sameShow(kept.project, show.project)) {
        return;
    }
    kept = show;
    isKept = true;
    writer().start(new WriteShow(store->path(), {QByteArray(), show.file, show.hasFile}, show.project));
}

void Recovery::waitForWriting()
{
    writer().waitForDone();
}
