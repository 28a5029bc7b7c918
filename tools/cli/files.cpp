// What the commands read and write.
#include "cli.h"
#include "terminal.h"

#include "show/base/wholefile.h"

#include <QFileInfo>
#include <QTextStream>

#include <cerrno>
#include <cstdio>

namespace cli {

namespace {

bool isStandardOutput(const QString &path)
{
    return path == QLatin1String("-");
}

QString whyUnreadable(const QString &path)
{
    const QFileInfo file(path);
    if (file.isDir()) {
        return QStringLiteral("is a folder");
    }
    if (!file.exists()) {
        return file.isSymLink() ? QStringLiteral("is a link to a file that is gone") : QStringLiteral("no such file");
    }
    if (!file.isFile()) {
        return QStringLiteral("is no regular file");
    }
    return file.isReadable() ? QStringLiteral("cannot be read to its end") : QStringLiteral("permission denied");
}

bool writeStandardOutput(const QByteArray &bytes)
{
    makeOutputBinary();
    const bool whole = std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout) == size_t(bytes.size()) &&
                       std::fflush(stdout) == 0;
    if (!whole) {
        complain(QStringLiteral("standard output: ") + qt_error_string(errno));
    }
    return whole;
}

} // namespace

std::optional<QByteArray> readFile(const QString &path)
{
    std::optional<QByteArray> bytes = glow::readWholeFile(path);
    if (!bytes) {
        complain(QStringLiteral("%1: %2").arg(path, whyUnreadable(path)));
    }
    return bytes;
}

bool isReadable(const QString &path)
{
    const QFileInfo file(path);
    const bool readable = file.isFile() && file.isReadable();
    if (!readable) {
        complain(QStringLiteral("%1: %2").arg(path, whyUnreadable(path)));
    }
    return readable;
}

std::optional<glow::Project> openProject(const QString &path)
{
    const std::optional<QByteArray> bytes = readFile(path);
    if (!bytes) {
        return std::nullopt;
    }
    if (!glow::isProjectPath(path)) {
        complain(QStringLiteral("%1: not a .gsw3 project; old .gsw projects are opened in the window and saved anew")
                     .arg(path));
        return std::nullopt;
    }
    if (!glow::looksLikeProject(*bytes)) {
        complain(QStringLiteral("%1: not a project, whatever its name says").arg(path));
        return std::nullopt;
    }
    return glow::readProject(*bytes);
}

bool writeFile(const QString &path, const QByteArray &bytes)
{
    if (isStandardOutput(path)) {
        return writeStandardOutput(bytes);
    }
    const glow::WriteResult written = glow::writeWholeFile(path, bytes);
    if (written.state != glow::WriteResult::Written) {
        const bool isFolder = QFileInfo(path).isDir();
        complain(QStringLiteral("%1: %2").arg(path, isFolder ? QStringLiteral("is a folder") : written.error));
        return false;
    }
    return true;
}

void printWritten(const QString &path, const QString &what)
{
    if (isStandardOutput(path)) {
        complain(what);
    } else {
        print(QStringLiteral("%1: %2").arg(path, what));
    }
}

} // namespace cli
