// The source pictures that patterns name in their settings: which are gone, and where they may be found again. A lost
// source does no harm to the show, since every pattern carries its own thumbnail; it is only missed in editing.
#pragma once

#include <QString>

#include <optional>

namespace glow {

// The source picture's path, whole, of the settings text of a picture pattern; nothing for any other text.
std::optional<QString> sourcePicture(const QString &settingsText);

// True for a picture pattern whose file does not exist. Of the path only what stands before the first "|" counts.
bool isPictureLost(const QString &settingsText);

// What a lost picture is searched by: the part of its path behind the last "/", or the whole path without one.
QString pictureName(const QString &path);

// The lost picture's name of such settings.
QString lostPictureName(const QString &settingsText);

// The absolute path of the first entry in a directory tree that is no directory and whose name contains the given one,
// in the file system's order; empty if there is none. Containing is enough on purpose: "a.png" is also found in
// "data.png.bak". An empty name is found nowhere.
QString findPicture(const QString &directory, const QString &name);

// Copies a picture into a folder under its own name. False if it is lost or no regular file (the copy of a device would
// have no end), or if a file of that name is there already: the first of two pictures with one name stays.
bool copyPicture(const QString &path, const QString &directory);

} // namespace glow
