// The program from outside: started as a process of its own with settings, a home and a command line of its own.
//
// This executable is its own child: started with GLOWSMITH_TEST_CHILD set, it runs the program's start-up code instead
// of the tests, while a script answers the dialogs as a user would, writes down what it sees and closes the window.
#include "app/mainwindow.h"
#include "app/startup.h"
#include "library/httpserver.h"
#include "show/model/projectfile.h"
#include "show/model/propvalues.h"
#include "show/model/settingstext.h"
#include "support/dialogdriver.h"
#include "support/samples.h"
#include "support/testenv.h"
#include "timeline/timeline.h"
#include "ui_mainwindow.h"

#include <QActionGroup>
#include <QProcess>
#include <QSettings>
#include <QtTest>

namespace {

const char *const childMark = "GLOWSMITH_TEST_CHILD";

// What the child reports: lines of a name, "=", and a value.
void tell(const QString &name, const QString &value)
{
    QTextStream out(stdout);
    out.setCodec("UTF-8");
    out << name << '=' << value << '\n';
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
    const auto checked = [](const QActionGroup *group) {
        return QString::number(group->actions().indexOf(group->checkedAction()));
    };
    tell("title", window.windowTitle());
    tell("patterns", QString::number(window.currentTimeline->items.size()));
    tell("leds", QString::number(ledCount));
    tell("menu", window.ui->menu->title());
    tell("gadget", checked(window.gadgetGroup));
    tell("language", checked(window.languageGroup));
    tell("size", QString("%1x%2").arg(window.width()).arg(window.height()));
    tell("icon", window.windowIcon().isNull() ? "no" : "yes");
}

// Runs inside the child, from the moment that the application object stands. The script's words: "new" and "current"
// answer the start dialog, "update" its question; "close" answers the question at the end with No, "save" first with
// Cancel and then with Save.
void startScript()
{
    if (!qEnvironmentVariableIsSet(childMark)) {
        return;
    }
    const QString start = qEnvironmentVariable(childMark).section(',', 0, 0);
    const bool saves = qEnvironmentVariable(childMark).endsWith("save");
    auto *watch = new QTimer(qApp);
    watch->start(10);
    if (start == "update") {
        QObject::connect(watch, &QTimer::timeout, qApp, [] {
            if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
                box->button(QMessageBox::Yes)->click();
            }
        });
        return;
    }
    auto *driver = new DialogDriver(qApp);
    driver->answerWith([start](QDialog *dialog) {
        tell("early window", shownWindow() != nullptr ? "yes" : "no");
        dialog->findChild<QPushButton *>(start == "current" ? "load_current" : "pushButton0")->click();
    });
    QObject::connect(watch, &QTimer::timeout, qApp, [driver, watch, saves] {
        MainWindow *window = shownWindow();
        if (window == nullptr) {
            return;
        }
        watch->stop();
        tellAbout(*window);
        if (saves) {
            driver->answerBox(QMessageBox::Cancel);
            window->close();
            tell("after cancel", window->isVisible() ? "open" : "gone");
        }
        driver->answerBox(saves ? QMessageBox::Save : QMessageBox::No);
        window->close();
        tell("question", driver->boxes().last().text);
        tell("unexpected", driver->unexpected.join(';'));
    });
}

Q_COREAPP_STARTUP_FUNCTION(startScript)

} // namespace

class TestStartup : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        env.reset(new TestEnv);
        server.reset(new HttpServer);
        QVERIFY(server->isListening());
        server->answer("3.104\n");
        qputenv("GLOWSMITH_UPDATE_URL", server->url());
    }

    void cleanup() { env.reset(); }

    void firstStartChoosesForTheUser()
    {
        QSettings("Vantorel", "Glowsmith").clear();
        const QStringList told = run("new,close");
        for (const char *line :
             {"early window=no", "title=Glowsmith", "menu=檔案", "gadget=3", "language=0", "leds=70", "size=1000x720",
              "icon=yes", "question=<font color='white'>關閉前儲存？</font>", "unexpected="}) {
            QVERIFY2(told.contains(line), qPrintable(told.join('\n')));
        }
        QCOMPARE(env->value("main/version").toString(), QString("3.104"));
        QCOMPARE(env->value("main/language").toInt(), 1);
        QCOMPARE(env->value("main/gadget").toInt(), 3);
    }

    void projectOfTheCommandLineIsSavedAtTheEnd()
    {
        const QString path = show("show.gsw3", 55, 3);
        const QDateTime before = QFileInfo(path).lastModified();
        const QString told = run("new,save", {path}).join(' ');
        QVERIFY2(told.contains("title=Glowsmith - show.gsw3   patterns=3 leds=55"), qPrintable(told));
        QVERIFY2(told.contains("after cancel=open"), qPrintable(told));
        QVERIFY(env->value("window/size").isValid());
        QCOMPARE(env->value("window/maximize").toString(), QString("false"));
        QCOMPARE(env->value("main/currentfile").toString(), path);
        QVERIFY(QFileInfo(path).lastModified() > before);
    }

    void laterStartIsAsTheUserLeftIt()
    {
        env->setValue("main/language", 2);
        env->setValue("window/size", QSize(1234, 800));
        env->setValue("main/currentfile", show("last.gsw3", 66, 2));
        server->response.clear(); // an update server that keeps silent holds nothing back
        const QStringList told = run("current,close", {show("show.gsw3", 55, 3)}); // the dialog's project comes last
        for (const char *line :
             {"title=Glowsmith - last.gsw3  ", "patterns=2", "leds=66", "menu=File", "language=1", "size=1234x800",
              "question=<font color='white'>Save before close？</font>", "unexpected="}) {
            QVERIFY2(told.contains(line), qPrintable(told.join('\n')));
        }
    }

    void acceptedUpdateEndsTheProgram()
    {
        server->answer("9.9\nnote");
        // No window was built. There is no updater to start, which troubles nobody.
        QCOMPARE(run("update,close"), (QStringList{"ended=well", ""}));
    }

    void theProgramItself()
    {
        QProcess program;
        program.start(GLOWSMITH_PROGRAM, QStringList());
        QTRY_COMPARE_WITH_TIMEOUT(server->requests.size(), 1, 60000); // its start dialog asks
        QCOMPARE(program.state(), QProcess::Running);
        program.kill();
        program.waitForFinished();
    }

private:
    // Runs the child to its end; what it told is empty unless it ended well.
    static QStringList run(const QString &script, const QStringList &arguments = {})
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(childMark, script);
        process.setProcessEnvironment(environment);
        process.start(QCoreApplication::applicationFilePath(), arguments);
        // The server runs in this process, so its event loop must go on.
        const bool ended = QTest::qWaitFor([&] { return process.state() == QProcess::NotRunning; }, 150000);
        process.kill();
        process.waitForFinished();
        if (!ended || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
            qWarning().noquote() << process.readAllStandardError();
            return {};
        }
        return ("ended=well\n" + QString::fromUtf8(process.readAllStandardOutput())).split('\n');
    }

    // The path of a new show file.
    QString show(const QString &name, qint16 leds, int patterns) const
    {
        glow::Project project;
        project.ledCount = leds;
        project.frameRate = 1000;
        project.tracks.resize(1);
        for (int i = 0; i < patterns; ++i) {
            project.tracks.first().append(
                patternBlob(glow::composeSettings(glow::ColourSettings{Qt::red}, 1), i * 1000));
        }
        return put(env->path(name), glow::writeProject(project)) ? env->path(name) : QString();
    }

    QScopedPointer<TestEnv> env;
    QScopedPointer<HttpServer> server;
};

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
