// libFuzzer's entry points: the target is the executable's name behind "fuzz_". With GLOWSMITH_CORPUS set to a folder,
// the target's corpus is written there and nothing else is done.
#include "targets.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdlib>

namespace {

const fuzz::Target *driven = nullptr;

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    static QTemporaryDir home; // the user's settings and ports are not touched
    qputenv("HOME", home.path().toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", home.path().toLocal8Bit());
    qputenv("GLOWSMITH_PORT_PATTERN", QFile::encodeName(home.filePath(QStringLiteral("COM%1"))));
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false\n*.warning=false"));
    static int count = 1;
    static auto *application = new QApplication(count, *argv);
    Q_UNUSED(application)
    const QString name = QFileInfo(QFile::decodeName((*argv)[0])).fileName().section(u'_', 1);
    driven = fuzz::target(name);
    if (driven == nullptr) {
        qFatal("no such target");
    }
    const QString folder = qEnvironmentVariable("GLOWSMITH_CORPUS");
    if (!folder.isEmpty()) {
        QDir().mkpath(folder);
        const auto files = fuzz::corpus(name);
        for (auto one = files.begin(); one != files.end(); ++one) {
            QFile file(QDir(folder).filePath(one.key()));
            if (!file.open(QIODevice::WriteOnly) || file.write(one.value()) != one.value().size()) {
                qFatal("the corpus cannot be written");
            }
        }
        std::_Exit(0);
    }
    Q_UNUSED(argc)
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    driven->run(QByteArray(reinterpret_cast<const char *>(data), int(size)));
    return 0;
}
