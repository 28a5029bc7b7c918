// Pictures that a test keeps beside itself, in golden/: small PNG files, each of which was looked at once.
//
//     GLOWSMITH_GOLDEN=write scripts/with-display.sh build/dev/bin/test_effects
//
// writes them anew from what the program draws now. Look at what has changed before it is committed.
#pragma once

#include "support/pixels.h"

#include <QDir>

// How a picture differs from the kept one of that name; empty if it does not. A few pixels may, and all of them by up
// to step in a channel, for one processor's vector units round a little differently from another's.
inline QString unlikeGolden(const QImage &picture, const QString &name, int few = 0, int step = 2)
{
    const QString path = QDir(QStringLiteral(GOLDEN_FOLDER)).filePath(name);
    if (qgetenv("GLOWSMITH_GOLDEN") == "write") {
        QDir().mkpath(QStringLiteral(GOLDEN_FOLDER));
        return picture.save(path, nullptr, 0) ? QString() : QStringLiteral("cannot write ") + path;
    }
    const QImage kept(path);
    int off = !kept.isNull() && kept.size() == picture.size() ? 0 : few + 1;
    QPoint last;
    for (int i = 0; off <= few && i < kept.width() * kept.height(); ++i) {
        const QPoint at(i % kept.width(), i / kept.width());
        if (distance(kept.pixel(at), picture.pixel(at)) > step) {
            last = at;
            ++off;
        }
    }
    if (off <= few) {
        return {};
    }
    const QString seen = QDir::temp().filePath(name);
    picture.save(seen);
    return QStringLiteral("%1 differs, also at %2, %3; now: %4").arg(name).arg(last.x()).arg(last.y()).arg(seen);
}
