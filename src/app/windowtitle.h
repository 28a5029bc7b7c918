// The window's title: which project is open, and whether it has changed since it was saved.
#pragma once

#include <QString>

namespace glow {

// Of a show that has no file: "Glowsmith", changed or not.
QString bareTitle();

// Of a saved project: "Glowsmith - ", the part of the path behind the last "/", and two blanks.
QString titleOfProject(const QString &path);

// The title with the mark of a change: a "*" in the place of the second blank. The bare title, which has no blank,
// stays.
QString changedTitle(QString title);

} // namespace glow
