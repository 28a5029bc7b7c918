#include "show/base/wholefile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace glow {

namespace {

// A write that is cut short by a full disk counts as a success with Qt; only the next one reports the error.
bool writeAll(QFileDevice &file, const QByteArray &bytes)
{
    qint64 done = 0;
    while (done < bytes.size()) {
        const qint64 written = file.write(bytes.constData() + done, bytes.size() - done);
        if (written <= 0) {
            return false;
        }
        done += written;
    }
    return true;
}

bool overwrite(QFile &file, const QByteArray &bytes)
{
    return file.seek(0) && writeAll(file, bytes) && file.resize(bytes.size());
}

WriteResult writeInPlace(const QString &path, const QByteArray &bytes)
{
    const QFileInfo info(path);
    QFile file(path);
    if (info.isFile()) {
        // Not emptied first: the old bytes keep their place on the disk, so they can be put back when it is full.
        if (!file.open(QIODevice::ReadWrite | QIODevice::Unbuffered)) {
            return {WriteResult::NotOpened, file.errorString()};
        }
        const QByteArray old = file.readAll();
        if (overwrite(file, bytes)) {
            return {};
        }
        const QString error = file.errorString();
        overwrite(file, old);
        return {WriteResult::Failed, error};
    }
    const bool existed = info.exists();
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        return {WriteResult::NotOpened, file.errorString()};
    }
    if (writeAll(file, bytes)) {
        return {};
    }
    const QString error = file.errorString();
    if (!existed) {
        file.remove();
    }
    return {WriteResult::Failed, error};
}

} // namespace

WriteResult writeWholeFile(const QString &path, const QByteArray &bytes)
{
    if (path.isEmpty()) {
        return {WriteResult::NotOpened, QString()};
    }
    const QFileInfo info(path);
    QSaveFile file(path);
    if ((info.exists() && !info.isFile()) || !file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        return writeInPlace(path, bytes);
    }
    if (!writeAll(file, bytes)) {
        return {WriteResult::Failed, file.errorString()};
    }
    if (!file.commit()) {
        // Everything was written, but the result could not be moved into its place.
        const QString error = file.errorString();
        return writeInPlace(path, bytes).state == WriteResult::Written ? WriteResult()
                                                                       : WriteResult{WriteResult::Failed, error};
    }
    return {};
}

std::optional<QByteArray> readWholeFile(const QString &path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    const QByteArray content = file.readAll();
    if (file.error() != QFileDevice::NoError || content.size() < file.size()) {
        return std::nullopt;
    }
    return content;
}

} // namespace glow
