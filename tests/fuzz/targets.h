// What foreign bytes reach, one function a kind of input. libFuzzer drives them (fuzzmain.cpp, scripts/fuzz.sh), and
// the ordinary test runs the corpora and every former finding through them (test_foreignbytes.cpp). A function returns;
// anything else, and a false promise by abort(), is a finding.
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

namespace fuzz {

struct Target
{
    const char *name;
    void (*run)(const QByteArray &bytes);
};

// project, oldproject, blob, bin, device, update, window; an entry without a name ends the list.
extern const Target targets[];

// The target of that name, or null.
const Target *target(const QString &name);

// Sound inputs of a target by name, made by the program's own writers.
QMap<QString, QByteArray> corpus(const QString &target);

} // namespace fuzz
