// The copy of an unsaved show: when it is kept, when it goes, and what a next start finds.
#include "app/recovery.h"
#include "smalldisk.h"
#include "support/windowtest.h"

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
        const auto back = glow::readUnsaved(bytes);
        QVERIFY(back && back->project == show.project && back->file == show.file && back->hasFile);
        for (int i = 0; i < bytes.size(); ++i) {
            QVERIFY(!glow::readUnsaved(bytes.left(i)));
            QByteArray wrong = bytes;
            wrong[i] = char(wrong.at(i) ^ 0x55);
            // File and flag are not under the sum; nothing else gets by.
            QCOMPARE(glow::readUnsaved(wrong).value_or(show).project, show.project);
        }
    }

    void whatCannotBeReadStaysForAnotherStart()
    {
        const QString broken = folder() + "/unsaved-7.show";
        const QString unread = folder() + "/unsaved-8.show";
        QVERIFY(put(broken, "no show") && put(unread) && QFile::resize(unread, qint64(1) << 31));
        QVERIFY(!glow::RecoveryStore(folder()).findLeftover());
        QVERIFY(!QFile::exists(broken) && QFile::exists(unread));
    }

    void changeIsKeptAndSavingRemovesIt()
    {
        QCOMPARE(kept(), 0); // nothing changed yet
        add(patternBlob("1?#ff0000", 0));
        QVERIFY(recovery->hasUnsaved());
        QCOMPARE(kept(), 1);
        // Another program leaves alone what belongs to a living one, and clears away what was half written.
        const QString scrap = folder() + "/unsaved-1.show.a1B2c3";
        QVERIFY(put(scrap));
        glow::RecoveryStore second(folder());
        QVERIFY(!QFile::exists(scrap) && !second.findLeftover());
        QCOMPARE(second.path(), folder() + "/unsaved-1.show");

        window->on_actionSave_triggered();
        QCOMPARE(keptFiles(), 0);
        QVERIFY(!recovery->hasUnsaved());
        QCOMPARE(kept(), 0);
        // The item's own menu takes no snapshot; its change is kept all the same.
        window->currentTimeline->items.first()->on_itemDelete_clicked();
        QCOMPARE(kept(), 1);
        window->on_actionSave_triggered();
        QCOMPARE(keptFiles(), 0);
        window->ReadSong("/gone.wav"); // another song alone is a change too
        QCOMPARE(kept(), 1);
    }

    void leftoverComesBackAsItWas()
    {
        for (const QString kind : {"whole", "emptied", "without a file", "on a full disk"}) {
            init();
            const bool hasFile = kind != "without a file"; // which New leaves, answered with Cancel
            const bool fullDisk = kind == "on a full disk" && SmallDisk::works;
            QVERIFY(put(window->currentFile, "the user's own"));
            for (const char *settings : {"1?#ff0000", "1?#00ff00", "1?#0000ff"}) {
                add(patternBlob(settings, 0));
                window->on_timeline_add_clicked();
            }
            if (kind == "emptied") {
                recovery->showIsSafe();
                window->resetDocument();
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
            const auto show = store->findLeftover();
            QVERIFY(show.has_value());
            window.reset(new MainWindow);
            keepIn(std::move(store));
            window->setWindowTitle("Glowsmith - other.gsw3  "); // was given to this run
            {
                const SmallDisk disk(fullDisk ? 100 : SmallDisk::endless);
                window->restoreShow(*show);
                recovery->adoptLeftover();
            }
            QCOMPARE(window->asProject().tracks, before.tracks);
            QVERIFY(window->currentFile == env->path("mine.gsw3") && window->hasFile == hasFile);
            QCOMPARE(window->windowTitle(), QString(hasFile ? "Glowsmith - mine.gsw3 *" : "Glowsmith"));
            QVERIFY(recovery->hasUnsaved());
            QCOMPARE(keptFiles(), 1); // this run's own copy, or still the earlier one
            QCOMPARE(QFile::exists(file), fullDisk);
            QCOMPARE(contentOf(window->currentFile), QByteArray("the user's own"));
            window->hasFile = true;
            window->on_actionSave_triggered();
            QCOMPARE(keptFiles(), 0);
            cleanup();
        }
    }

    void failedSaveKeepsTheCopyAndTheMark()
    {
        add(patternBlob("1?#ff0000", 0));
        for (const bool full : {false, SmallDisk::works}) { // a place that cannot be opened is left without a word
            window->currentFile = env->path(full ? "mine.gsw3" : "no/such/folder.gsw3");
            window->setWindowTitle("Glowsmith - a.gsw3 *");
            DialogDriver driver;
            if (full) {
                driver.answerBox(QMessageBox::Ok);
            }
            QCOMPARE(kept(), 1);
            const SmallDisk disk(full ? 100 : SmallDisk::endless);
            window->on_actionSave_triggered();
            QVERIFY(driver.done() && recovery->hasUnsaved());
            QCOMPARE(kept(), 1);
            QCOMPARE(window->windowTitle(), QString("Glowsmith - a.gsw3 *"));
        }
    }

    // A save under a name that does not open as a project: the copy stays until there is one that does.
    void misfiledShowIsKept()
    {
        for (const QString way : {"saved as a project", "new show", "closed"}) {
            add(patternBlob("1?#ff0000", 0));
            window->hasFile = true;
            window->currentFile = env->path("exported.bin");
            window->on_actionSave_triggered();
            QVERIFY(contentOf(window->currentFile).size() > 100 && !window->windowTitle().endsWith('*'));
            QVERIFY(ui->statusBar->currentMessage().contains(window->currentFile));
            QCOMPARE(kept(), 1);
            DialogDriver driver;
            if (way == "saved as a project") {
                driver.answerFile({env->path("mine.gsw3")});
                window->on_actionSaveas_triggered();
            } else if (way == "new show") {
                driver.answerBox(QMessageBox::Yes);
                window->on_actionNew_triggered();
                add(patternBlob("1?#ff0000", 0));
                QCOMPARE(kept(), 2); // the new show has a place of its own
                recovery->discard();
            } else {
                driver.answerBox(QMessageBox::No);
                QVERIFY(window->close());
            }
            QVERIFY(driver.done());
            QCOMPARE(keptFiles(), way == "saved as a project" ? 0 : 1);
            for (const QString &file : QDir(folder()).entryList(QDir::Files)) {
                QFile::remove(folder() + '/' + file);
            }
            delete recovery;
            keepIn(std::make_unique<glow::RecoveryStore>(folder()));
        }
    }

    // Saving without a name saves nothing: what nobody has looked at yet is kept. What is refused goes.
    void closingDecides()
    {
        for (const bool save : {true, false}) {
            add(patternBlob("1?#ff0000", 0));
            QVERIFY(save || kept() == 1);
            window->hasFile = false;
            window->show();
            DialogDriver driver;
            driver.answerBox(save ? QMessageBox::Save : QMessageBox::No);
            if (save) {
                driver.answerFile({});
            }
            QVERIFY(window->close());
            QVERIFY(driver.done());
            recovery->waitForWriting();
            QCOMPARE(keptFiles(), save ? 1 : 0);
            recovery->discard();
            keepIn(std::make_unique<glow::RecoveryStore>(folder()));
        }
    }

private:
    void keepIn(std::unique_ptr<glow::RecoveryStore> store)
    {
        recovery = window->keepUnsaved(std::move(store));
        recovery->timer.stop();
    }
    int keptFiles() const { return QDir(folder()).entryList({"*.show"}, QDir::Files).size(); }
    // Has the window looked at now, and tells how many shows lie in the folder then.
    int kept()
    {
        recovery->keep();
        recovery->waitForWriting();
        return keptFiles();
    }
    QString folder() const { return env->path("data"); }

    Recovery *recovery = nullptr; // of the window
};

QTEST_MAIN(TestRecovery)
#include "test_recovery.moc"
