// The program from outside: started as a process of its own with settings, a home and a command line of its own, and
// killed with an unsaved show.
//
// This executable is its own child: started with GLOWSMITH_TEST_CHILD set, it runs the program's start-up code instead
// of the tests, while a script answers the dialogs as a user would, writes down what it sees and closes the window.
#include "app/startup.h"
#include "library/httpserver.h"
#include "show/model/projectfile.h"
#include "show/model/propvalues.h"
#include "show/model/recoverystore.h"
#include "support/windowtest.h"

#include <QActionGroup>
#include <QProcess>
#include <QSettings>

namespace {

const char *const childMark = "GLOWSMITH_TEST_CHILD";

// Where the child reports.
QTextStream &report()
{
    static QTextStream out(stdout);
    out.setCodec("UTF-8");
    return out;
}

MainWindow *shownWindow()
{
    const QWidgetList tops = QApplication::topLevelWidgets();
    const auto found = std::find_if(tops.begin(), tops.end(), [](QWidget *top) {
        return qobject_cast<MainWindow *>(top) != nullptr && top->isVisible();
    });
    return found == tops.end() ? nullptr : static_cast<MainWindow *>(*found);
}

// What the user does once the window stands, by the script's last word: closes it ("close", "save", which is a Cancel
// and then a Save), or waits for the end of the process, "add" with a new pattern whose copy is on the disk.
void work(MainWindow &window, DialogDriver &driver, const QString &word, QTimer &watch)
{
    if (word == "add" && window.currentTimeline->items.isEmpty()) {
        window.currentTimeline->addTimelineItem(new TimelineItem(patternBlob("1?#ff0000", 0), window.currentTimeline));
    }
    if (word == "add" && QDir(glow::RecoveryStore::standardFolder()).entryList({"*.show"}).isEmpty()) {
        return; // comes by here again
    }
    watch.stop();
    const auto checked = [](const QActionGroup *group) { return group->actions().indexOf(group->checkedAction()); };
    report() << "'" << window.windowTitle() << "' patterns=" << window.settingsTexts().size() << " leds=" << ledCount
             << " menu=" << window.ui->menu->title() << " gadget=" << checked(window.gadgetGroup)
             << " language=" << checked(window.languageGroup) << " size=" << window.width() << 'x' << window.height()
             << (window.windowIcon().isNull() ? "" : " icon ");
    if (word == "save") {
        driver.answerBox(QMessageBox::Cancel);
        window.close();
        report() << (window.isVisible() ? "still open " : "gone ");
    }
    if (word == "save" || word == "close") {
        driver.answerBox(word == "save" ? QMessageBox::Save : QMessageBox::No);
        window.close();
    }
    report() << (driver.done() ? "as expected " : "unexpected: " + driver.unexpected.join(';'))
             << (word == "add" || word == "wait" ? "waits" : "") << Qt::flush;
}

// Runs inside the child, from the moment that the application object stands. The script's words: the buttons that are
// clicked in the start dialog, or "update" for a Yes to its question; the answer to the offer of an unsaved show,
// "yes", "no" or
// "-" where none may come; and what is done then.
void startScript()
{
    const QStringList words = qEnvironmentVariable(childMark).split(' ');
    if (words.size() < 3) {
        return;
    }
    auto *watch = new QTimer(qApp);
    watch->start(10);
    if (words.at(0) == "update") {
        QObject::connect(watch, &QTimer::timeout, qApp, [] {
            if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
                box->button(QMessageBox::Yes)->click();
            }
        });
        return;
    }
    auto *driver = new DialogDriver(qApp);
    driver->answerWith([words](QDialog *dialog) {
        report() << (shownWindow() == nullptr ? "start dialog, " : "early window, ");
        for (const QString &button : words.at(0).split('+')) {
            dialog->findChild<QPushButton *>(button)->click();
        }
    });
    if (words.at(1) != "-") {
        driver->answerBox(words.at(1) == "yes" ? QMessageBox::Yes : QMessageBox::No);
    }
    QObject::connect(watch, &QTimer::timeout, qApp, [driver, watch, words] {
        if (MainWindow *window = shownWindow()) {
            work(*window, *driver, words.at(2), *watch);
        }
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
        qputenv("XDG_DATA_HOME", QFile::encodeName(env->path("data")));
        server.reset(new HttpServer);
        QVERIFY(server->isListening());
        server->answer("3.104\n");
        qputenv("GLOWSMITH_UPDATE_URL", server->url());
    }

    void cleanup() { env.reset(); }

    void firstStartChoosesForTheUser()
    {
        QSettings("Vantorel", "Glowsmith").clear();
        QCOMPARE(
            run("pushButton0 - close"),
            QString("start dialog, 'Glowsmith' patterns=0 leds=70 menu=檔案 gadget=3 language=0 size=1000x720 icon "
                    "as expected ended well"));
        QCOMPARE(env->value("main/version").toString(), QString("3.104"));
        QCOMPARE(env->value("main/language").toInt(), 1);
        QCOMPARE(env->value("main/gadget").toInt(), 3);
    }

    // A line of the start dialog, where the system does not speak Chinese.
    void firstStartMayTurnEnglish()
    {
        QSettings("Vantorel", "Glowsmith").clear();
        const QString told = run("choose_english+pushButton0 - close");
        QVERIFY2(told.contains("menu=File gadget=3 language=2 "), qPrintable(told));
        QCOMPARE(env->value("main/language").toInt(), 3);
    }

    void projectOfTheCommandLineIsSavedAtTheEnd()
    {
        const QString path = show("show.gsw3", 55, 3);
        const QDateTime before = QFileInfo(path).lastModified();
        const QString told = run("pushButton0 - save", {path});
        QVERIFY2(told.contains("'Glowsmith - show.gsw3  ' patterns=3 leds=55"), qPrintable(told));
        QVERIFY2(told.endsWith("still open as expected ended well"), qPrintable(told));
        QVERIFY(env->value("window/size").isValid());
        QCOMPARE(env->value("window/maximize").toString(), QString("false"));
        QCOMPARE(env->value("main/currentfile").toString(), path);
        QVERIFY(QFileInfo(path).lastModified() > before);
    }

    void laterStartIsAsTheUserLeftIt()
    {
        env->setValue("main/language", 2);
        env->setValue("window/size", QSize(5000, 800)); // on a screen that is 1600 wide
        env->setValue("main/currentfile", show("last.gsw3", 66, 2));
        server->response.clear(); // an update server that keeps silent holds nothing back
        QString told = run("load_current - close", {show("show.gsw3", 55, 3)}); // the dialog's project comes last
        told.replace(QRegularExpression("size=(15[0-9][0-9]|1600)x800"), "size=the screen's"); // in logical pixels
        QCOMPARE(told,
                 QString("start dialog, 'Glowsmith - last.gsw3  ' patterns=2 leds=66 menu=File gadget=0 language=1 "
                         "size=the screen's icon as expected ended well"));
    }

    // Killed with an unsaved show, the program offers it at the next start; what was declined is offered no more.
    void unsavedShowIsOfferedOnce()
    {
        for (const auto &[script, patterns] : {std::pair<QString, int>("pushButton0 - add", 1),
                                               {"pushButton0 yes wait", 1},
                                               {"pushButton0 no wait", 0},
                                               {"pushButton0 - wait", 0}}) {
            const QString told = run(script);
            QVERIFY2(told.contains(QString(" patterns=%1 ").arg(patterns)), qPrintable(script + ": " + told));
            QVERIFY2(told.endsWith(" as expected waits"), qPrintable(script + ": " + told));
        }
    }

    void acceptedUpdateEndsTheProgram()
    {
        server->answer("9.9\nnote");
        // No window was built. There is no updater to start, which troubles nobody.
        QCOMPARE(run("update - close"), QString("ended well"));
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
    // Runs the child to its end, or kills it when it waits for that. What it told, in one line.
    static QString run(const QString &script, const QStringList &arguments = {})
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(childMark, script);
        process.setProcessEnvironment(environment);
        process.start(QCoreApplication::applicationFilePath(), arguments);
        QByteArray told;
        // The server runs in this process, so its event loop must go on.
        const bool ended = QTest::qWaitFor(
            [&] {
                told += process.readAllStandardOutput();
                return told.contains("waits") || process.state() == QProcess::NotRunning;
            },
            150000);
        process.kill();
        process.waitForFinished();
        if (ended && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0) {
            told += process.readAllStandardOutput() + "ended well";
        }
        return QString::fromUtf8(told).trimmed();
    }

    // The path of a new show file.
    QString show(const QString &name, qint16 leds, int patterns) const
    {
        QVector<QByteArray> track;
        for (int i = 0; i < patterns; ++i) {
            track.append(patternBlob("1?#ff0000", i * 1000));
        }
        return put(env->path(name), glow::writeProject({leds, 1000, "null", {track}})) ? env->path(name) : QString();
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
