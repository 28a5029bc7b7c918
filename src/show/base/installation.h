// What differs from one installation of the program to the next: the addresses that it opens, and where its manual
// lies.
#pragma once

#include <QString>
#include <QUrl>

namespace glow {

// Each address comes from the first of these that names one:
//
//   1. the environment: GLOWSMITH_UPDATE_URL, GLOWSMITH_STORE_URL, GLOWSMITH_SITE_URL, whole URLs;
//   2. the configuration file, in INI form, keys "update/url", "store/url", "site/url": "glowsmith.ini" beside the
//      program, or else "glowsmith/glowsmith.ini" in the system's configuration directories;
//   3. a built-in address that leads nowhere; none for updates.

// Where the latest version is asked for with a plain HTTP GET; empty where no address is configured.
QUrl updateUrl();

// The store's page.
QUrl storeUrl();

// The maker's web site.
QUrl siteUrl();

// Where a page of the manual lies, such as "manual.en.html" (docs/CMakeLists.txt): in "share/glowsmith" beside the
// program's folder, as installed and as built, or else in "glowsmith" of the system's data folders. Where it is in none
// of them: where it should be, a path that names no file.
QString manualPage(const QString &name);

} // namespace glow
