// A disk that is full: while an object lives, no file of this process grows beyond so many bytes, and writing more
// fails as it does on a full disk. Where the system has no such limit, nothing happens.
#pragma once

#include <QtGlobal>

#include <limits>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/resource.h>
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
