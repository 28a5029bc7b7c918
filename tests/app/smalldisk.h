// A disk that is full: while an object lives, no file of this process grows beyond so many bytes, and writing more
// fails as it does on a full disk.
#pragma once

#include <QtGlobal>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/resource.h>

class SmallDisk
{
public:
    explicit SmallDisk(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before);
        rlimit limit = before;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~SmallDisk() { setrlimit(RLIMIT_FSIZE, &before); }
    Q_DISABLE_COPY_MOVE(SmallDisk)

private:
    rlimit before;
};
#endif
