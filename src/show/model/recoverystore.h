// Where a show that nobody has saved survives the end of the program: one file a running program in the user's data
// folder, guarded by a lock that tells a living program from one that went down.
#pragma once

#include <QByteArray>
#include <QLockFile>
#include <QString>

#include <memory>
#include <optional>

namespace glow {

// An unsaved show and what it belonged to.
struct UnsavedShow
{
    QByteArray project; // in the form of projectfile.h
    QString file;       // the project's path, or the directory that was offered
    bool hasFile = false;
};

// The file is a QDataStream dump with the stream's defaults: the text "GLOWSMITH-UNSAVED-1", file (QString), hasFile
// (bool), project (QByteArray), and the project's SHA-256, so that a file that a crash left half done is not offered.
QByteArray writeUnsaved(const UnsavedShow &show);

// Nothing for anything but a whole file.
std::optional<UnsavedShow> readUnsaved(const QByteArray &bytes);

class RecoveryStore
{
public:
    // folder is made when it is needed. Locks the first free one of a hundred places there, so that no two programs
    // that run write to the same one.
    explicit RecoveryStore(const QString &folder);
    ~RecoveryStore();

    // The user's data folder.
    static QString standardFolder();

    // The newest show that a program that is gone has left, if any. It stays on disk until forgetLeftover. On the way,
    // what was read and is no whole show is removed; what could not be read (no permission, a disk that fails) stays
    // for another start.
    std::optional<UnsavedShow> findLeftover();
    void forgetLeftover();

    // The path that this program writes to; empty if no place could be had.
    QString path() const { return own; }
    // Removes what this program wrote, and a leftover that it has not forgotten yet.
    void remove();

    // Leaves what this program wrote to the next start and takes another place.
    void setAside();

private:
    void takePlace();

    QString folder;
    QString own;
    QString leftover;
    std::unique_ptr<QLockFile> lock;
    std::unique_ptr<QLockFile> leftoverLock;
};

} // namespace glow
