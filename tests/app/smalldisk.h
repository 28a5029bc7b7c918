// Disks that refuse. SmallDisk is full: while an object lives, no file of this process grows beyond so many bytes, and
// writing more fails as it does on a full disk. Where the system has no such limit, nothing happens.
#pragma once

#include <QFile>
#include <QString>

#include <limits>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

class SmallDisk
{
public:
    static constexpr quint64 endless = std::numeric_limits<quint64>::max();
#ifdef Q_OS_UNIX
    static constexpr bool works = true;

    explicit SmallDisk(quint64 bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before);
        const rlimit limit{qMin<rlim_t>(bytes, before.rlim_max), before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~SmallDisk()
    {
        setrlimit(RLIMIT_FSIZE, &before);
    }

private:
    rlimit before;
#else
    static constexpr bool works = false;

    explicit SmallDisk(quint64 /*bytes*/) {}
#endif
};

// A folder that takes no new file, though the file in it may be written. Root, whom no permission stops, becomes
// nobody.
class LockedFolder
{
public:
#ifdef Q_OS_UNIX
    static constexpr bool works = true;

    LockedFolder(const QString &path, const QString &file)
        : path(QFile::encodeName(path))
    {
        constexpr uid_t nobody = 65534;
        if (isRoot) {
            isReady = chown(QFile::encodeName(file), nobody, gid_t(-1)) == 0 && chmod(this->path, 0755) == 0 &&
                      seteuid(nobody) == 0;
        } else {
            isReady = chmod(this->path, 0555) == 0;
        }
    }
    ~LockedFolder()
    {
        isReady = (isRoot ? seteuid(0) : chmod(path, 0755)) == 0;
    }

    bool isReady = false;

private:
    const QByteArray path;
    const bool isRoot = geteuid() == 0;
#else
    static constexpr bool works = false;

    LockedFolder(const QString & /*path*/, const QString & /*file*/) {}
    bool isReady = true;
#endif
};
