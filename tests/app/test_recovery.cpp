// The copy of an unsaved show: when it is kept, when it goes, and what a next start finds.
#include "app/recovery.h"
#include "smalldisk.h"
#include "support/dialogdriver.h"
#include "support/samples.h"
#include "support/windowtest.h"
#include "timeline/timeline.h"
#include "timeline/timelineitem.h"
#include "ui_mainwindow.h"

#include <QtTest>

class TestRecovery : public WindowTest
{
    Q_OBJECT

private slots:
    void init()
    {
        WindowTest::init();
        keepIn(std::make_unique<glow::RecoveryStore>(folder()));
        window->currentFile = env->path("mine.gsw3");
        window->hasFile = true;
    }

    void formRefusesAnythingButAWholeFile()
    {
        const glow::UnsavedShow show{"project bytes", "/a/b.gsw3", true};
        const QByteArray bytes = glow::writeUnsaved(show);
        glow::UnsavedShow back;
        QVERIFY(glow::readUnsaved(bytes, back));
        QVERIFY(back.project == show.project && back.file == show.file && back.hasFile);
        for (int i = 0; i < bytes.size(); ++i) {
            QVERIFY(!glow::readUnsaved(bytes.left(i), back));
            QByteArray wrong = bytes;
            wrong[i] = char(wrong.at(i) ^ 0x55);
            // File and flag are not under the sum; nothing else gets by.
            QVERIFY(!glow::readUnsaved(wrong, back) || back.project == show.project);
        }
    }

    void changeIsKeptAndSavingRemovesIt()
    {
        QCOMPARE(kept(), 0); // nothing changed yet
        addColour();
        QVERIFY(window->recovery->hasUnsaved());
        QCOMPARE(kept(), 1);
        // Another program leaves alone what belongs to a living one, and clears away what was half written.
        const QString scrap = folder() + "/unsaved-1.show.a1B2c3";
        QVERIFY(put(scrap));
        glow::RecoveryStore second(folder());
        QVERIFY(!QFile::exists(scrap));
        glow::UnsavedShow show;
        QVERIFY(!second.findLeftover(show));
        QCOMPARE(second.path(), folder() + "/unsaved-1.show");

        window->on_actionSave_triggered();
        QCOMPARE(keptFiles(), 0);
        QVERIFY(!window->recovery->hasUnsaved());
        QCOMPARE(kept(), 0);
        // The item's own menu takes no snapshot; its change is kept all the same.
        window->currentTimeline->items.first()->on_itemDelete_clicked();
        QCOMPARE(kept(), 1);
    }

    void leftoverComesBackAsItWas_data()
    {
        QTest::addColumn<bool>("empty");
        QTest::addColumn<bool>("fullDisk");
        QTest::addColumn<bool>("hasFile");
        QTest::newRow("a show") << false << false << true;
        QTest::newRow("a show that was emptied") << true << false << true;
        QTest::newRow("a show that has lost its file") << false << false << false; // by New answered with Cancel
#ifdef Q_OS_UNIX
        QTest::newRow("on a full disk") << false << true << true;
#endif
    }

    void leftoverComesBackAsItWas()
    {
        QFETCH(const bool, empty);
        QFETCH(const bool, fullDisk);
        QFETCH(const bool, hasFile);
        addColour();
        QVERIFY(put(window->currentFile, "the user's own"));
        if (empty) {
            window->recovery->showIsSafe();
            window->currentTimeline->items.first()->on_itemDelete_clicked();
        }
        for (int i = 0; i < 3 && !empty; ++i) {
            window->on_timeline_add_clicked();
            window->ui->Color_R->setValue(100 + i);
            addColour();
        }
        QCOMPARE(kept(), 1);
        window->hasFile = hasFile; // without a change of the show
        QCOMPARE(kept(), 1);
        const glow::Project before = window->asProject();

        // What remains of a run that was killed: the file without its program.
        const QString file = folder() + "/unsaved-0.show";
        const QByteArray survivor = contentOf(file);
        window.reset();
        QVERIFY(put(file, survivor));
        auto store = std::make_unique<glow::RecoveryStore>(folder());
        glow::UnsavedShow show;
        QVERIFY(store->findLeftover(show));
        window.reset(new MainWindow);
        keepIn(std::move(store));
        window->setWindowTitle("Glowsmith - other.gsw3  "); // was given to this run
        {
#ifdef Q_OS_UNIX
            const SmallDisk disk(fullDisk ? 100 : RLIM_INFINITY);
#endif
            window->recovery->restore(show);
        }
        QCOMPARE(window->asProject().tracks, before.tracks);
        QCOMPARE(window->currentFile, env->path("mine.gsw3"));
        QCOMPARE(window->hasFile, hasFile);
        QCOMPARE(window->windowTitle(), QString(hasFile ? "Glowsmith - mine.gsw3 *" : "Glowsmith"));
        QVERIFY(window->recovery->hasUnsaved());
        QCOMPARE(keptFiles(), 1); // this run's own copy, or still the earlier one
        QCOMPARE(QFile::exists(file), fullDisk);
        QCOMPARE(contentOf(window->currentFile), QByteArray("the user's own"));
        window->hasFile = true;
        window->on_actionSave_triggered();
        QCOMPARE(keptFiles(), 0);
    }

    void failedSaveKeepsTheCopyAndTheMark()
    {
        addColour();
        QCOMPARE(kept(), 1);
        const auto saveFails = [this](const QString &path, bool saysSo) {
            window->currentFile = path;
            window->setWindowTitle("Glowsmith - a.gsw3 *");
            DialogDriver driver;
            if (saysSo) {
                driver.answerBox(QMessageBox::Ok);
            }
            window->on_actionSave_triggered();
            QVERIFY(driver.done());
            QVERIFY(window->recovery->hasUnsaved());
            QCOMPARE(kept(), 1);
            QVERIFY(window->windowTitle().endsWith('*'));
        };
        window->hasFile = true;
        saveFails(env->path("no/such/folder.gsw3"), false);
#ifdef Q_OS_UNIX
        const SmallDisk disk(100);
        saveFails(env->path("mine.gsw3"), true);
#endif
    }

    // Saving without a name saves nothing: what nobody has looked at yet is kept.
    void closingDecides()
    {
        for (const bool save : {true, false}) {
            addColour();
            window->hasFile = false;
            window->show();
            DialogDriver driver;
            driver.answerBox(save ? QMessageBox::Save : QMessageBox::No);
            if (save) {
                driver.answerFile({});
            }
            QVERIFY(window->close());
            QVERIFY(driver.done());
            window->recovery->waitForWriting();
            QCOMPARE(keptFiles(), save ? 1 : 0);
            window->recovery->discard();
            keepIn(std::make_unique<glow::RecoveryStore>(folder()));
        }
    }

private:
    void keepIn(std::unique_ptr<glow::RecoveryStore> store)
    {
        window->recovery = new Recovery(window.data(), std::move(store));
        window->recovery->timer.stop();
    }
    void addColour()
    {
        window->ui->Mode_Pic->setCurrentIndex(1);
        window->on_Add_Button_clicked();
    }
    int keptFiles() const
    {
        return QDir(folder()).entryList({"*.show"}, QDir::Files).size();
    }
    // Has the window looked at now, and tells how many shows lie in the folder then.
    int kept()
    {
        window->recovery->keep();
        window->recovery->waitForWriting();
        return keptFiles();
    }
    QString folder() const
    {
        return env->path("data");
    }
};

QTEST_MAIN(TestRecovery)
#include "test_recovery.moc"
