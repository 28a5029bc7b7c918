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
    if (kept.size() != picture.size()) {
        return QStringLiteral("%1 is %2 wide, not %3").arg(name).arg(kept.width()).arg(picture.width());
    }
    QRect where;
    int off = 0;
    for (int i = 0; i < kept.width() * kept.height(); ++i) {
        const QPoint at(i % kept.width(), i / kept.width());
        if (distance(kept.pixel(at), picture.pixel(at)) > step) {
            where |= QRect(at, at);
            ++off;
        }
    }
    if (off <= few) {
        return {};
    }
    const QString seen = QDir::temp().filePath(name);
    picture.save(seen);
    return QStringLiteral("%1: %2 pixels off between %3, %4 and %5, %6; drawn now: %7")
        .arg(name)
        .arg(off)
        .arg(where.left())
        .arg(where.top())
        .arg(where.right())
        .arg(where.bottom())
        .arg(seen);
}
