#include "app/startup.h"

#include "app/mainwindow.h"
#include "app/recovery.h"
#include "forms/style.h"
#include "library/about.h"
#include "show/base/appsettings.h"
#include "show/base/languages.h"
#include "show/base/programversion.h"
#include "show/base/resources.h"

#include <QApplication>
#include <QByteArray>
#include <QIcon>
#include <QMessageBox>
#include <QScreen>
#include <QStyle>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>

namespace glow {

namespace {

// The catalogue row that a first start chooses.
constexpr int firstGadget = 3;

// True at the first start of all.
bool chooseLanguage(Languages &languages)
{
    AppSettings settings;
    settings.setValue(AppSettings::versionKey, programVersion);
    const int language = settings.value(AppSettings::languageKey, AppSettings::NeverChosen).toInt();
    const bool firstStart = language == AppSettings::NeverChosen;
    if (firstStart) {
        settings.setValue(AppSettings::languageKey, AppSettings::Chinese);
        settings.setValue(AppSettings::gadgetKey, firstGadget);
    }
    languages.speak(language);
    return firstStart;
}

// The size, or what of it the screen has room for: it can have become smaller since.
QSize onScreen(const QSize &size)
{
    QSize room = QGuiApplication::primaryScreen()->availableSize();
    if (size.height() > room.height()) {
        room.rheight() -= QApplication::style()->pixelMetric(QStyle::PM_TitleBarHeight);
    }
    return size.boundedTo(room);
}

void showAsLeft(MainWindow &window)
{
    const AppSettings settings;
    window.restoreLayout();
    if (settings.value(AppSettings::maximizedKey, false).toBool()) {
        window.showMaximized();
        return;
    }
    const QSize size = settings.value(AppSettings::sizeKey).toSize();
    window.resize(size.isValid() ? onScreen(size) : window.minimumSize());
    window.show();
}

// A show that went down with an earlier run is offered once: what is declined is gone.
std::optional<UnsavedShow> wantedBack(RecoveryStore &store)
{
    const std::optional<UnsavedShow> show = store.findLeftover();
    if (!show.has_value()) {
        return std::nullopt;
    }
    if (wantsUnsavedBack()) {
        return show;
    }
    store.forgetLeftover();
    return std::nullopt;
}

// What is asked for on the command line and needs no window, nor a display; empty for everything else.
QByteArray answerTo(const QByteArray &argument)
{
    if (argument == "--version" || argument == "-v") {
        return "glowsmith " + QByteArray::number(programVersion, 'f', 3) + '\n';
    }
    if (argument == "--help" || argument == "-h") {
        return "Usage: glowsmith [PROJECT]\n\n"
               "Opens the window, with PROJECT if one is named: a .gsw3 project or an older .gsw one.\n\n"
               "  -h, --help     print this and end\n"
               "  -v, --version  print the version and end\n\n"
               "glowsmith-cli works on shows without a window; the manual is \"man glowsmith\".\n";
    }
    return {};
}

int runProgram()
{
    Languages languages;
    const bool firstStart = chooseLanguage(languages);
    const QIcon icon(QStringLiteral(":/appicon.ico"));
    QApplication::setWindowIcon(icon); // of every dialog
    QString project;
    {
        // Gone before the window stands: an answer of the update server that comes later interrupts nobody's work.
        about start;
        start.setWindowIcon(icon);
        if (firstStart && Languages::systemIsForeign()) {
            start.offerEnglish([&languages] {
                AppSettings().setValue(AppSettings::languageKey, AppSettings::CompleteEnglish);
                languages.speak(AppSettings::CompleteEnglish);
            });
        }
        if (start.exec() != 0) {
            return 0;
        }
        project = start.loadPath;
    }
    auto store = std::make_unique<RecoveryStore>(RecoveryStore::standardFolder());
    const std::optional<UnsavedShow> unsaved = wantedBack(*store);

    MainWindow window;
    window.setWindowIcon(icon);
    if (!project.isEmpty() && !unsaved.has_value()) {
        window.LoadFile(project);
    }
    Recovery *recovery = window.keepUnsaved(std::move(store));
    if (unsaved.has_value()) {
        window.restoreShow(*unsaved);
        recovery->adoptLeftover();
    }
    showAsLeft(window);
    return QCoreApplication::exec();
}

} // namespace

bool wantsUnsavedBack()
{
    QMessageBox box(QMessageBox::Question, QStringLiteral("Glowsmith"),
                    QStringLiteral("<font color='white'>發現上次未儲存的光舞，是否復原？<br>"
                                   "An unsaved show was found. Restore it?</font>"),
                    QMessageBox::Yes | QMessageBox::No);
    box.setDefaultButton(QMessageBox::Yes);
    applyStyle(&box);
    return box.exec() == QMessageBox::Yes;
}

int runGlowsmith(int argc, char **argv)
{
    const QByteArray answer = argc > 1 ? answerTo(argv[1]) : QByteArray();
    if (!answer.isEmpty()) {
        return std::fputs(answer.constData(), stdout) < 0 || std::fflush(stdout) != 0 ? 1 : 0;
    }
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    const QApplication application(argc, argv);
    initResources();
    prepareApplication();
    const int result = runProgram();
    if (about::unansweredChecks() > 0) {
        // Everything is saved and closed; what is left would only wait for a network that does not answer.
        std::fflush(nullptr);
        std::_Exit(result);
    }
    return result;
}

} // namespace glow
