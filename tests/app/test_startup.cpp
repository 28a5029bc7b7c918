// The program from outside: started as a process of its own with settings, a home and a command line of its own.
//
// This executable is its own child: started with GLOWSMITH_TEST_CHILD set, it runs the program's start-up code instead
// of the tests, while a script answers the dialogs as a user would, writes down what it sees and closes the window. The
// last test drives the installed program itself, by the keyboard, and needs xdotool.
#include "app/mainwindow.h"
#include "app/projectfile.h"
#include "app/propvalues.h"
#include "app/settingstext.h"
#include "app/startup.h"
#include "support/dialogdriver.h"
#include "timeline/timeline.h"
#include "ui_mainwindow.h"

#include <QActionGroup>
#include <QApplication>
#include <QElapsedTimer>
#include <QIcon>
#include <QProcess>
#include <QSettings>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTextStream>
#include <QTimer>
#include <QtTest>

namespace {

const char *const childMark = "GLOWSMITH_TEST_CHILD";

// What the child reports: lines of a name, "=", and a value.
void tell(const QString &name, const QString &value)
{
    QTextStream(stdout) << name << QLatin1Char('=') << value << QLatin1Char('\n');
}

MainWindow *shownWindow()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        auto *window = qobject_cast<MainWindow *>(widget);
        if (window != nullptr && window->isVisible()) {
            return window;
        }
    }
    return nullptr;
}

void tellAbout(const MainWindow &window)
{
    int patterns = 0;
    for (const Timeline *track : window.timelines) {
        patterns += track->items.size();
    }
    tell(QStringLiteral("title"), window.windowTitle());
    tell(QStringLiteral("patterns"), QString::number(patterns));
    tell(QStringLiteral("leds"), QString::number(ledCount));
    tell(QStringLiteral("menu"), window.ui->menu->title());
    tell(QStringLiteral("gadget"),
         QString::number(window.gadgetGroup->actions().indexOf(window.gadgetGroup->checkedAction())));
    tell(QStringLiteral("language"),
         QString::number(window.languageGroup->actions().indexOf(window.languageGroup->checkedAction())));
    tell(QStringLiteral("size"), QStringLiteral("%1x%2").arg(window.width()).arg(window.height()));
    tell(QStringLiteral("icon"), window.windowIcon().isNull() ? QStringLiteral("no") : QStringLiteral("yes"));
}

// Says yes to the first question that comes.
void acceptUpdate()
{
    auto *watch = new QTimer(qApp);
    QObject::connect(watch, &QTimer::timeout, qApp, [] {
        if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
            box->button(QMessageBox::Yes)->click();
        }
    });
    watch->start(10);
}

// Runs inside the child, from the moment that the application object stands. The script's words: "new", "current",
// "escape" answer the start dialog, "update" its question; "close" answers the question at the end with No, "save"
// first with Cancel and then with Save.
void startScript()
{
    const QStringList script = qEnvironmentVariable(childMark).split(u',');
    if (script.size() != 2) {
        return;
    }
    if (script.first() == QLatin1String("update")) {
        acceptUpdate();
        return;
    }
    auto *driver = new DialogDriver(qApp);
    driver->answerWith([start = script.first()](QDialog *dialog) {
        tell(QStringLiteral("start"), QString::fromLatin1(dialog->metaObject()->className()));
        const bool windowStands = !QApplication::topLevelWidgets().isEmpty() && shownWindow() != nullptr;
        tell(QStringLiteral("early window"), windowStands ? QStringLiteral("yes") : QStringLiteral("no"));
        if (start == QLatin1String("escape")) {
            dialog->reject();
        } else {
            dialog
                ->findChild<QPushButton *>(start == QLatin1String("current") ? QStringLiteral("load_current")
                                                                             : QStringLiteral("pushButton0"))
                ->click();
        }
    });
    auto *watch = new QTimer(qApp);
    QObject::connect(watch, &QTimer::timeout, qApp, [driver, watch, end = script.last()] {
        MainWindow *window = shownWindow();
        if (window == nullptr) {
            return;
        }
        watch->stop();
        tellAbout(*window);
        if (end == QLatin1String("save")) {
            driver->answerBox(QMessageBox::Cancel);
            window->close();
            tell(QStringLiteral("after cancel"), window->isVisible() ? QStringLiteral("open") : QStringLiteral("gone"));
        }
        driver->answerBox(end == QLatin1String("save") ? QMessageBox::Save : QMessageBox::No);
        window->close();
        tell(QStringLiteral("question"), driver->boxes().last().text);
        tell(QStringLiteral("unexpected"), driver->unexpected.join(u';'));
    });
    watch->start(10);
}

Q_COREAPP_STARTUP_FUNCTION(startScript)

} // namespace

class TestStartup : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void firstRunChoosesTheSourceLanguage();
    void secondRunSpeaksEnglish();
    void oddSettingsStart();
    void projectOnTheCommandLine();
    void projectOfTheDialogComesLast();
    void asksBeforeItCloses();
    void silentNetworkHoldsNothingBack();
    void acceptedUpdateEndsTheProgram();
    void theProgramItself();

private:
    struct Run
    {
        QMap<QString, QString> told;
        int exitCode = -1;
        bool finished = false;
        QByteArray errors;
    };
    Run run(const QString &script, const QStringList &arguments = {}) const;
    QProcessEnvironment environment() const;
    QVariant setting(const QString &key) const { return QSettings(settingsFile(), QSettings::IniFormat).value(key); }
    void set(const QString &key, const QVariant &value) const
    {
        QSettings(settingsFile(), QSettings::IniFormat).setValue(key, value);
    }
    QString settingsFile() const { return dir->filePath(QStringLiteral("config/Vantorel/Glowsmith.conf")); }
    QString show(const QString &name, qint16 leds, int patterns) const;

    QScopedPointer<QTemporaryDir> dir;
    QScopedPointer<QTcpServer> server; // says that 3.104 is the latest version
    QByteArray answer;
};

void TestStartup::init()
{
    dir.reset(new QTemporaryDir);
    QVERIFY(QDir(dir->path()).mkpath(QStringLiteral("config/Vantorel")));
    QVERIFY(QDir(dir->path()).mkpath(QStringLiteral("runtime")));
    answer = "3.104\n";
    server.reset(new QTcpServer);
    QVERIFY(server->listen(QHostAddress::LocalHost));
    connect(server.data(), &QTcpServer::newConnection, server.data(), [this] {
        QTcpSocket *socket = server->nextPendingConnection();
        connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
            if (!answer.isEmpty()) {
                socket->write("HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n" + answer);
                socket->disconnectFromHost();
            }
        });
    });
}

QProcessEnvironment TestStartup::environment() const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), dir->path());
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), dir->filePath(QStringLiteral("config")));
    environment.insert(QStringLiteral("GLOWSMITH_UPDATE_URL"),
                       QStringLiteral("http://127.0.0.1:%1/version").arg(server->serverPort()));
    return environment;
}

TestStartup::Run TestStartup::run(const QString &script, const QStringList &arguments) const
{
    QProcess process;
    QProcessEnvironment settings = environment();
    settings.insert(QString::fromLatin1(childMark), script);
    process.setProcessEnvironment(settings);
    process.setWorkingDirectory(dir->path());
    process.start(QCoreApplication::applicationFilePath(), arguments);
    Run result;
    // The server runs in this process, so its event loop must go on.
    QElapsedTimer watch;
    watch.start();
    while (process.state() != QProcess::NotRunning && watch.elapsed() < 150000) {
        QTest::qWait(10);
    }
    result.finished = process.state() == QProcess::NotRunning;
    process.kill();
    process.waitForFinished();
    result.exitCode = process.exitCode();
    result.errors = process.readAllStandardError();
    const QStringList lines = QString::fromUtf8(process.readAllStandardOutput()).split(u'\n');
    for (const QString &line : lines) {
        result.told.insert(line.section(u'=', 0, 0), line.section(u'=', 1));
    }
    if (!result.finished || result.exitCode != 0) {
        qWarning().noquote() << result.errors;
    }
    return result;
}

QString TestStartup::show(const QString &name, qint16 leds, int patterns) const
{
    glow::Project project;
    project.ledCount = leds;
    project.frameRate = 1000;
    project.tracks.resize(1);
    for (int i = 0; i < patterns; ++i) {
        glow::PatternRecord record;
        record.startTime = glow::timeOf(i * 1000);
        record.endTime = glow::timeOf(i * 1000 + 900);
        record.repeatCount = 1;
        record.patternKind = glow::ColourPattern;
        record.settingsText = glow::composeColour(Qt::red);
        project.tracks.first().append(glow::writePattern(record));
    }
    const QString path = dir->filePath(name);
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(glow::writeProject(project)) > 0 ? path : QString();
}

void TestStartup::firstRunChoosesTheSourceLanguage()
{
    const Run first = run(QStringLiteral("new,close"));
    QVERIFY(first.finished);
    QCOMPARE(first.exitCode, 0);
    QCOMPARE(first.told.value(QStringLiteral("start")), QStringLiteral("about"));
    QCOMPARE(first.told.value(QStringLiteral("early window")), QStringLiteral("no"));
    QCOMPARE(first.told.value(QStringLiteral("title")), QStringLiteral("Glowsmith"));
    QCOMPARE(first.told.value(QStringLiteral("menu")), QStringLiteral("檔案"));
    QCOMPARE(first.told.value(QStringLiteral("gadget")), QStringLiteral("3"));
    QCOMPARE(first.told.value(QStringLiteral("language")), QStringLiteral("0"));
    QCOMPARE(first.told.value(QStringLiteral("leds")), QStringLiteral("70"));
    QCOMPARE(first.told.value(QStringLiteral("icon")), QStringLiteral("yes"));
    QCOMPARE(first.told.value(QStringLiteral("question")), QStringLiteral("<font color='white'>關閉前儲存？</font>"));
    QCOMPARE(first.told.value(QStringLiteral("unexpected")), QString());
    QCOMPARE(setting(QStringLiteral("main/version")).toDouble(), 3.104);
    QCOMPARE(setting(QStringLiteral("main/language")).toInt(), 1);
    QCOMPARE(setting(QStringLiteral("main/gadget")).toInt(), 3);
}

void TestStartup::secondRunSpeaksEnglish()
{
    set(QStringLiteral("main/language"), 2);
    set(QStringLiteral("main/gadget"), 2);
    set(QStringLiteral("window/size"), QSize(1234, 800));
    const Run english = run(QStringLiteral("escape,close"));
    QCOMPARE(english.exitCode, 0);
    QCOMPARE(english.told.value(QStringLiteral("menu")), QStringLiteral("File"));
    QCOMPARE(english.told.value(QStringLiteral("gadget")), QStringLiteral("2"));
    QCOMPARE(english.told.value(QStringLiteral("language")), QStringLiteral("1"));
    QCOMPARE(english.told.value(QStringLiteral("size")), QStringLiteral("1234x800"));
    QCOMPARE(english.told.value(QStringLiteral("question")),
             QStringLiteral("<font color='white'>Save before close？</font>"));
    QCOMPARE(setting(QStringLiteral("main/language")).toInt(), 2);
}

void TestStartup::oddSettingsStart()
{
    set(QStringLiteral("main/language"), 7);
    set(QStringLiteral("window/size"), QStringLiteral("nonsense"));
    const Run other = run(QStringLiteral("new,close"));
    QCOMPARE(other.exitCode, 0);
    QCOMPARE(other.told.value(QStringLiteral("menu")), QStringLiteral("檔案"));
    QCOMPARE(other.told.value(QStringLiteral("language")), QStringLiteral("-1"));
    QCOMPARE(other.told.value(QStringLiteral("size")), QStringLiteral("1000x720"));
    QCOMPARE(setting(QStringLiteral("main/language")).toInt(), 7);
    QVERIFY(!setting(QStringLiteral("main/gadget")).isValid());
}

void TestStartup::projectOnTheCommandLine()
{
    const Run opened = run(QStringLiteral("new,close"), {show(QStringLiteral("show.gsw3"), 55, 3)});
    QCOMPARE(opened.exitCode, 0);
    QCOMPARE(opened.told.value(QStringLiteral("title")), QStringLiteral("Glowsmith - show.gsw3  "));
    QCOMPARE(opened.told.value(QStringLiteral("patterns")), QStringLiteral("3"));
    QCOMPARE(opened.told.value(QStringLiteral("leds")), QStringLiteral("55"));
}

void TestStartup::projectOfTheDialogComesLast()
{
    set(QStringLiteral("main/currentfile"), show(QStringLiteral("last.gsw3"), 66, 2));
    const Run opened = run(QStringLiteral("current,close"), {show(QStringLiteral("show.gsw3"), 55, 3)});
    QCOMPARE(opened.told.value(QStringLiteral("title")), QStringLiteral("Glowsmith - last.gsw3  "));
    QCOMPARE(opened.told.value(QStringLiteral("patterns")), QStringLiteral("2"));
    QCOMPARE(opened.told.value(QStringLiteral("leds")), QStringLiteral("66"));
}

void TestStartup::asksBeforeItCloses()
{
    const QString path = show(QStringLiteral("show.gsw3"), 55, 1);
    const QDateTime before = QFileInfo(path).lastModified();
    const Run saved = run(QStringLiteral("new,save"), {path});
    QCOMPARE(saved.exitCode, 0);
    QCOMPARE(saved.told.value(QStringLiteral("after cancel")), QStringLiteral("open"));
    QVERIFY(setting(QStringLiteral("window/size")).isValid());
    QCOMPARE(setting(QStringLiteral("main/currentfile")).toString(), path);
    QVERIFY(QFileInfo(path).lastModified() > before);
}

void TestStartup::silentNetworkHoldsNothingBack()
{
    answer.clear();
    const Run quiet = run(QStringLiteral("new,close"));
    QVERIFY(quiet.finished);
    QCOMPARE(quiet.exitCode, 0);
    QCOMPARE(quiet.told.value(QStringLiteral("unexpected")), QString());
    QCOMPARE(quiet.told.value(QStringLiteral("title")), QStringLiteral("Glowsmith"));
}

void TestStartup::acceptedUpdateEndsTheProgram()
{
#ifdef Q_OS_UNIX
    QFile updater(dir->filePath(QStringLiteral("updater.exe")));
    QVERIFY(updater.open(QIODevice::WriteOnly));
    updater.write("#!/bin/sh\ntouch updated\n");
    updater.close();
    QVERIFY(updater.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    answer = "9.9\nnote";
    const Run updated = run(QStringLiteral("update,close"));
    QVERIFY(updated.finished);
    QCOMPARE(updated.exitCode, 0);
    QVERIFY(!updated.told.contains(QStringLiteral("title"))); // no window was built
    QTRY_VERIFY(QFile::exists(dir->filePath(QStringLiteral("updated"))));
#else
    QSKIP("the updater of this test is a shell script");
#endif
}

void TestStartup::theProgramItself()
{
    const QString xdotool = QStandardPaths::findExecutable(QStringLiteral("xdotool"));
    if (xdotool.isEmpty() || QGuiApplication::platformName() != QLatin1String("xcb")) {
        QSKIP("needs xdotool and an X display");
    }
    // The number of the first visible window whose title matches, or nothing.
    const auto find = [&xdotool](const QString &title) {
        QProcess search;
        search.start(xdotool,
                     {QStringLiteral("search"), QStringLiteral("--onlyvisible"), QStringLiteral("--name"), title});
        search.waitForFinished();
        return QString::fromLatin1(search.readAllStandardOutput()).section(u'\n', 0, 0);
    };
    const auto press = [&xdotool](const QString &window, const QString &keys) {
        QProcess::execute(xdotool, {QStringLiteral("windowfocus"), window, QStringLiteral("key"), keys});
    };
    const QString path = show(QStringLiteral("itself.gsw3"), 55, 2);
    const QDateTime before = QFileInfo(path).lastModified();

    QProcess program;
    program.setProcessEnvironment(environment());
    program.setWorkingDirectory(dir->path());
    program.start(QStringLiteral(GLOWSMITH_PROGRAM), {path});
    QVERIFY(program.waitForStarted());
    QTRY_VERIFY_WITH_TIMEOUT(!find(QStringLiteral("^Glowsmith$")).isEmpty(), 30000);
    press(find(QStringLiteral("^Glowsmith$")), QStringLiteral("Return"));
    const QString title = QStringLiteral("^Glowsmith - itself.gsw3 ");
    QTRY_VERIFY_WITH_TIMEOUT(!find(title).isEmpty(), 30000);
    // The window may need a moment before it takes keys.
    const auto saved = [&] {
        press(find(title), QStringLiteral("ctrl+s"));
        return QFileInfo(path).lastModified() > before;
    };
    QTRY_VERIFY_WITH_TIMEOUT(saved(), 30000);
    QCOMPARE(setting(QStringLiteral("main/currentfile")).toString(), path);
    program.kill();
    program.waitForFinished();
}

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsSet(childMark)) {
        return glow::runGlowsmith(argc, argv);
    }
    const QApplication application(argc, argv);
    TestStartup test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_startup.moc"
