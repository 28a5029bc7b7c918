// The copy of an unsaved show: when it is kept, when it goes, and what a next start finds.
#include "app/mainwindow.h"
#include "app/recovery.h"
#include "support/dialogdriver.h"
#include "support/testenv.h"
#include "support/windowcheck.h"
#include "timeline/timeline.h"
#include "timeline/timelineitem.h"
#include "timeline/timescale.h"
#include "ui_mainwindow.h"

#include <QDir>
#include <QtTest>

class TestRecovery : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void formRefusesAnythingButAWholeFile();
    void livingProgramsAreLeftAlone();
    void changeIsKeptAndSavingRemovesIt();
    void changesWithoutASnapshotAreKept();
    void leftoverComesBackAsItWas();
    void failedSaveAtTheEndKeepsTheShow();
    void decliningAtTheEndRemovesIt();

private:
    void build();
    void addColour();
    QString folder() const { return env->path(QStringLiteral("data")); }
    QStringList keptFiles() const { return QDir(folder()).entryList({QStringLiteral("*.show")}, QDir::Files); }
    // What remains of a run that was killed: the file without its program.
    void killRun();

    QScopedPointer<TestEnv> env;
    QScopedPointer<MainWindow> window;
};

void TestRecovery::init()
{
    env.reset(new TestEnv);
    msPerPixel = 10.0F;
    build();
}

void TestRecovery::cleanup()
{
    window.reset();
    env.reset();
}

void TestRecovery::build()
{
    window.reset(new MainWindow);
    window->recovery = new Recovery(window.data(), std::make_unique<glow::RecoveryStore>(folder()));
    window->recovery->timer.stop();
}

void TestRecovery::addColour()
{
    window->ui->Mode_Pic->setCurrentIndex(1);
    window->on_Add_Button_clicked();
}

void TestRecovery::killRun()
{
    window->recovery->keep();
    window->recovery->waitForWriting();
    const QString file = QDir(folder()).filePath(keptFiles().value(0));
    QVERIFY(QFile::copy(file, env->path(QStringLiteral("survivor"))));
    window.reset();
    QFile::remove(file);
    QVERIFY(QFile::copy(env->path(QStringLiteral("survivor")), file));
}

void TestRecovery::formRefusesAnythingButAWholeFile()
{
    glow::UnsavedShow show{QByteArray("project bytes"), QStringLiteral("/a/b.gsw3"), true};
    const QByteArray bytes = glow::writeUnsaved(show);
    glow::UnsavedShow back;
    QVERIFY(glow::readUnsaved(bytes, back));
    QCOMPARE(back.project, show.project);
    QCOMPARE(back.file, show.file);
    QVERIFY(back.hasFile);
    for (int length = 0; length < bytes.size(); ++length) {
        QVERIFY(!glow::readUnsaved(bytes.left(length), back));
    }
    for (int i = 0; i < bytes.size(); ++i) {
        QByteArray wrong = bytes;
        wrong[i] = char(wrong.at(i) ^ 0x55);
        glow::readUnsaved(wrong, back); // file and flag are not under the sum; nothing else gets by
    }
    QByteArray changed = bytes;
    changed[bytes.indexOf("project")] = 'P';
    QVERIFY(!glow::readUnsaved(changed, back));
}

void TestRecovery::livingProgramsAreLeftAlone()
{
    addColour();
    window->recovery->keep();
    window->recovery->waitForWriting();
    QCOMPARE(keptFiles().size(), 1);
    glow::RecoveryStore second(folder());
    glow::UnsavedShow show;
    QVERIFY(!second.findLeftover(show));
    QVERIFY(!second.path().isEmpty());
    QVERIFY(!QFile::exists(second.path()));
}

void TestRecovery::changeIsKeptAndSavingRemovesIt()
{
    window->recovery->keep();
    QVERIFY(keptFiles().isEmpty()); // nothing changed yet
    addColour();
    QVERIFY(window->recovery->hasUnsaved());
    window->recovery->keep();
    window->recovery->waitForWriting();
    QCOMPARE(keptFiles().size(), 1);

    window->currentFile = env->path(QStringLiteral("show.gsw3"));
    window->hasFile = true;
    window->on_actionSave_triggered();
    QVERIFY(keptFiles().isEmpty());
    QVERIFY(!window->recovery->hasUnsaved());
    window->recovery->keep();
    window->recovery->waitForWriting();
    QVERIFY(keptFiles().isEmpty());
}

void TestRecovery::changesWithoutASnapshotAreKept()
{
    addColour();
    addColour();
    window->currentFile = env->path(QStringLiteral("show.gsw3"));
    window->hasFile = true;
    window->on_actionSave_triggered();
    // The item's own menu takes no snapshot.
    window->currentTimeline->items.first()->on_itemDelete_clicked();
    window->recovery->keep();
    window->recovery->waitForWriting();
    QCOMPARE(keptFiles().size(), 1);
}

void TestRecovery::leftoverComesBackAsItWas()
{
    addColour();
    window->on_timeline_add_clicked();
    addColour();
    const QString path = env->path(QStringLiteral("mine.gsw3"));
    QFile user(path);
    QVERIFY(user.open(QIODevice::WriteOnly));
    user.write("the user's own");
    user.close();
    window->currentFile = path;
    window->hasFile = true;
    const glow::Project before = window->asProject();
    killRun();

    auto store = std::make_unique<glow::RecoveryStore>(folder());
    glow::UnsavedShow show;
    QVERIFY(store->findLeftover(show));
    window.reset(new MainWindow);
    window->recovery = new Recovery(window.data(), std::move(store));
    window->recovery->restore(show);
    QCOMPARE(window->asProject().tracks, before.tracks);
    QCOMPARE(window->currentFile, path);
    QVERIFY(window->hasFile);
    QCOMPARE(window->windowTitle(), QStringLiteral("Glowsmith - mine.gsw3 *"));
    QVERIFY(window->recovery->hasUnsaved());
    QCOMPARE(keptFiles().size(), 1); // this run's own copy
    QCOMPARE(whatIsWrong(*window), QString());
    QVERIFY(user.open(QIODevice::ReadOnly));
    QCOMPARE(user.readAll(), QByteArray("the user's own"));
}

void TestRecovery::failedSaveAtTheEndKeepsTheShow()
{
    addColour();
    window->recovery->keep();
    window->recovery->waitForWriting();
    DialogDriver driver;
    driver.answerBox(QMessageBox::Save);
    driver.answerFile({}); // no name given
    window->show();
    QVERIFY(window->close());
    QVERIFY(driver.done());
    QCOMPARE(keptFiles().size(), 1);
}

void TestRecovery::decliningAtTheEndRemovesIt()
{
    addColour();
    window->recovery->keep();
    window->recovery->waitForWriting();
    DialogDriver driver;
    driver.answerBox(QMessageBox::No);
    window->show();
    QVERIFY(window->close());
    QVERIFY(driver.done());
    QVERIFY(keptFiles().isEmpty());
}

QTEST_MAIN(TestRecovery)
#include "test_recovery.moc"
