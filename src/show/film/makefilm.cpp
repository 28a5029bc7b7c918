#include "show/film/makefilm.h"

#include "show/base/wholefile.h"
#include "show/film/filmencoder.h"
#include "show/film/filmrenderer.h"
#include "show/film/wholefilm.h"

#include <QBuffer>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QLockFile>
#include <QRunnable>
#include <QThreadPool>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <system_error>

namespace glow {

namespace {

const QString unfinished = QStringLiteral(".glowsmith-film");

std::unique_ptr<QLockFile> lockFor(const QString &path)
{
    auto lock = std::make_unique<QLockFile>(path + QStringLiteral(".lock"));
    // A lock ages by the end of its program alone, not by time.
    lock->setStaleLockTime(0);
    lock->tryLock(0);
    return lock;
}

std::filesystem::path nativePath(const QString &path)
{
    return std::filesystem::path(QFile::encodeName(path).toStdString());
}

// The file that a film grows in. Nothing of it stays if it has not taken its goal's name.
class GrowingFile
{
public:
    explicit GrowingFile(const QString &filmGoal)
        : goal(filmGoal)
    {
        // The film of a link is that of the file behind it.
        const QFileInfo info(goal);
        if (info.exists()) {
            goal = info.canonicalFilePath();
        }
        const QFileInfo place(goal);
        path = place.dir().absoluteFilePath(u'.' + place.fileName() + unfinished);
    }
    ~GrowingFile()
    {
        if (lock != nullptr && lock->isLocked()) {
            QFile::remove(path);
        }
    }
    Q_DISABLE_COPY_MOVE(GrowingFile)

    FilmError open()
    {
        const QFileInfo info(goal);
        if (info.exists() && !info.isFile()) {
            return FilmError::GoalNoFile;
        }
        lock = lockFor(path);
        if (!lock->isLocked()) {
            return lock->error() == QLockFile::LockFailedError ? FilmError::GoalBusy : FilmError::GoalReadOnly;
        }
        if (info.exists() && !info.isWritable()) {
            return FilmError::GoalReadOnly;
        }
        removeLeftovers();
        return FilmError::None;
    }

    // The error's text; empty when the goal is the film.
    QString moveToGoal()
    {
        std::error_code error;
        std::filesystem::rename(nativePath(path), nativePath(goal), error);
        return QString::fromLocal8Bit(error.message().c_str()).left(error ? -1 : 0);
    }

    QString path;

private:
    // Those of this goal and of any other in the folder whose program is no more.
    void removeLeftovers() const
    {
        QFile::remove(path);
        QDir folder = QFileInfo(goal).dir();
        const QStringList names = folder.entryList({QStringLiteral(".*") + unfinished}, QDir::Files | QDir::Hidden);
        for (const QString &name : names) {
            const QString other = folder.absoluteFilePath(name);
            if (other != path && lockFor(other)->isLocked()) {
                QFile::remove(other);
            }
        }
    }

    QString goal;
    std::unique_ptr<QLockFile> lock;
};

// The next frame, drawn on another core while the present one is on its way to the encoder.
class FrameAhead
{
public:
    explicit FrameAhead(const FilmPlan &plan)
        : renderer(plan)
        , format(plan.format)
    {
        pool.setMaxThreadCount(1);
    }
    ~FrameAhead() { pool.waitForDone(); }
    Q_DISABLE_COPY_MOVE(FrameAhead)

    void begin(int number) { pool.start(new Drawing(this, number)); }

    // Of the frame that was begun last, in the bytes that the encoder takes.
    void take(QByteArray &bytes)
    {
        pool.waitForDone();
        bytes.swap(ready);
    }

private:
    class Drawing : public QRunnable
    {
    public:
        Drawing(FrameAhead *frameOwner, int frameNumber)
            : owner(frameOwner)
            , number(frameNumber)
        {
        }
        void run() override { encoderFrame(owner->format, owner->renderer.frame(number), owner->ready); }

    private:
        FrameAhead *owner;
        int number;
    };

    FilmRenderer renderer;
    FilmFormat format;
    QByteArray ready;
    QThreadPool pool;
};

// The frames in the order in which the encoder takes them: a .gif's colours are chosen from some of the whole film.
QVector<int> paletteFrames(const FilmPlan &plan)
{
    constexpr int most = 100;
    QVector<int> numbers;
    for (int i = 0; plan.format == FilmFormat::Gif && i < std::min(most, plan.frames()); ++i) {
        numbers.append(static_cast<int>(qint64(i) * plan.frames() / std::min(most, plan.frames())));
    }
    return numbers;
}

FilmResult makePicture(const FilmPlan &plan)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    FilmRenderer(plan).frame(0).save(&buffer, "PNG");
    const WriteResult written = writeWholeFile(plan.goal, bytes);
    if (written.state != WriteResult::Written) {
        return {FilmError::NotWritten, written.error};
    }
    return {};
}

// How far it is, told to somebody who may answer that it is enough.
class Teller
{
public:
    Teller(const std::function<bool(const FilmProgress &)> &progress, int frames)
        : hear(progress)
    {
        now.total = frames;
        clock.start();
    }
    bool tell(int done)
    {
        now.done = done;
        now.leftMs = done > 0 ? clock.elapsed() * (now.total - done) / done : 0;
        return again();
    }
    bool again()
    {
        isEnough = isEnough || (hear && !hear(now));
        return !isEnough;
    }
    bool isEnough = false;

private:
    const std::function<bool(const FilmProgress &)> &hear;
    FilmProgress now;
    QElapsedTimer clock;
};

// True if all frames were taken and the file is whole.
bool encode(const FilmPlan &plan, const QString &file, FilmEncoder &encoder, Teller &teller)
{
    QVector<int> order = paletteFrames(plan);
    const int hidden = order.size();
    for (int i = 0; i < plan.frames(); ++i) {
        order.append(i);
    }
    if (!encoder.start(encoderArguments(plan, file, hidden))) {
        return false;
    }
    FrameAhead ahead(plan);
    QByteArray bytes;
    ahead.begin(order.first());
    for (int i = 0; i < order.size(); ++i) {
        ahead.take(bytes);
        if (i + 1 < order.size()) {
            ahead.begin(order.at(i + 1));
        }
        if (!teller.tell(std::max(0, i - hidden)) || !encoder.write(bytes)) {
            return false;
        }
    }
    return teller.tell(plan.frames()) && encoder.finish() && isWholeFilm(file, plan.format);
}

} // namespace

FilmResult makeFilm(const FilmPlan &plan, const std::function<bool(const FilmProgress &)> &progress)
{
    if (plan.format != FilmFormat::Png && findEncoder().isEmpty()) {
        return {FilmError::NoEncoder, {}};
    }
    GrowingFile file(plan.goal);
    const FilmError error = file.open();
    if (error != FilmError::None) {
        return {error, plan.goal};
    }
    if (plan.format == FilmFormat::Png) {
        return makePicture(plan);
    }
    Teller teller(progress, plan.frames());
    FilmEncoder encoder([&teller] { return teller.again(); });
    if (!encode(plan, file.path, encoder, teller)) {
        return {teller.isEnough ? FilmError::Cancelled : FilmError::EncoderFailed, encoder.lastWords()};
    }
    const QString problem = file.moveToGoal();
    if (!problem.isEmpty()) {
        return {FilmError::NotMoved, problem};
    }
    return {};
}

} // namespace glow
