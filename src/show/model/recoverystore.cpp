#include "show/model/recoverystore.h"

#include "show/base/wholefile.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace glow {

namespace {

const QByteArray magic("GLOWSMITH-UNSAVED-1");

// More programs than anybody runs at once.
constexpr int places = 100;

QByteArray digest(const QByteArray &bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256);
}

std::unique_ptr<QLockFile> tryLock(const QString &path)
{
    auto lock = std::make_unique<QLockFile>(path + QStringLiteral(".lock"));
    // A lock ages by the end of its program alone, not by time.
    lock->setStaleLockTime(0);
    return lock->tryLock(0) ? std::move(lock) : nullptr;
}

// A program that went down in the middle of writing leaves what it had as "unsaved-0.show.XXXXXX".
void removeScraps(const QString &path)
{
    const QFileInfo info(path);
    const QFileInfoList scraps = info.dir().entryInfoList({info.fileName() + QStringLiteral(".??????")}, QDir::Files);
    for (const QFileInfo &scrap : scraps) {
        QFile::remove(scrap.filePath());
    }
}

} // namespace

QByteArray writeUnsaved(const UnsavedShow &show)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << magic << show.file << show.hasFile << show.project << digest(show.project);
    return bytes;
}

std::optional<UnsavedShow> readUnsaved(const QByteArray &bytes)
{
    UnsavedShow show;
    QDataStream stream(bytes);
    QByteArray mark;
    QByteArray sum;
    stream >> mark;
    if (mark != magic) {
        return std::nullopt;
    }
    stream >> show.file >> show.hasFile >> show.project >> sum;
    const bool whole = stream.status() == QDataStream::Ok && sum == digest(show.project);
    return whole ? std::make_optional(show) : std::nullopt;
}

RecoveryStore::RecoveryStore(const QString &dataFolder)
    : folder(dataFolder)
{
    takePlace();
}

void RecoveryStore::takePlace()
{
    if (!QDir().mkpath(folder)) {
        return;
    }
    for (int place = 0; place < places && own.isEmpty(); ++place) {
        const QString candidate = QDir(folder).filePath(QStringLiteral("unsaved-%1.show").arg(place));
        // A place that holds what another program left stays untouched until somebody decides about it.
        if (QFile::exists(candidate)) {
            continue;
        }
        lock = tryLock(candidate);
        if (lock != nullptr) {
            own = candidate;
            removeScraps(own);
        }
    }
}

RecoveryStore::~RecoveryStore() = default;

QString RecoveryStore::standardFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/Glowsmith");
}

std::optional<UnsavedShow> RecoveryStore::findLeftover()
{
    const QFileInfoList files = QDir(folder).entryInfoList({QStringLiteral("unsaved-*.show")}, QDir::Files, QDir::Time);
    for (const QFileInfo &info : files) {
        if (info.filePath() == own) {
            continue;
        }
        std::unique_ptr<QLockFile> held = tryLock(info.filePath());
        if (held == nullptr) {
            continue; // its program runs
        }
        const std::optional<QByteArray> bytes = readWholeFile(info.filePath());
        if (!bytes.has_value()) {
            continue;
        }
        std::optional<UnsavedShow> show = readUnsaved(*bytes);
        if (show.has_value()) {
            leftover = info.filePath();
            leftoverLock = std::move(held);
            return show;
        }
        QFile::remove(info.filePath());
    }
    return std::nullopt;
}

void RecoveryStore::forgetLeftover()
{
    if (!leftover.isEmpty()) {
        QFile::remove(leftover);
        leftover.clear();
        leftoverLock.reset();
    }
}

void RecoveryStore::remove()
{
    if (!own.isEmpty()) {
        QFile::remove(own);
    }
    forgetLeftover();
}

void RecoveryStore::setAside()
{
    own.clear();
    lock.reset();
    takePlace();
}

} // namespace glow
