// Projects in the window: saving, opening, both formats, and what failures leave behind.
#include "app/projectfile.h"
#include "app/propvalues.h"
#include "app/settingstext.h"
#include "smalldisk.h"
#include "song/songmaker.h"
#include "support/dialogdriver.h"
#include "support/samples.h"
#include "support/windowcheck.h"
#include "support/windowtest.h"
#include "timeline/timeline.h"
#include "timeline/timelineitem.h"
#include "ui_mainwindow.h"

#include <QActionGroup>
#include <QProgressDialog>
#include <QRandomGenerator>
#include <QtTest>

using glow::Project;
using Tracks = QVector<QVector<QByteArray>>;

namespace {

constexpr int second = 1000;

QByteArray colourBlob(int startMs, const QColor &colour = Qt::red, int lengthMs = 500)
{
    return patternBlob(glow::composeColour(colour), startMs, lengthMs, colour);
}

QByteArray fileOf(const Tracks &tracks, qint16 leds = 48, float rate = 1100)
{
    Project project;
    project.ledCount = leds;
    project.frameRate = rate;
    project.tracks = tracks;
    return glow::writeProject(project);
}

} // namespace

class TestProject : public WindowTest
{
    Q_OBJECT

private slots:
    void savesEveryTrackAndNoHiddenOne()
    {
        saved("a.gsw3");
        QCOMPARE(contentOf(env->path("a.gsw3")), QByteArray::fromHex("004640A068000000000000000008006E0075006C006C"));

        Timeline *first = window->currentTimeline;
        const QByteArray one = add(colourBlob(0))->itemData;
        const QByteArray two = add(colourBlob(second, Qt::blue))->itemData;
        window->on_timeline_add_clicked();
        Timeline *last = window->currentTimeline;
        QCOMPARE(saved("a.gsw3").tracks, (Tracks{{one, two}, {}}));
        const QByteArray three = add(colourBlob(0))->itemData;
        QCOMPARE(saved("a.gsw3").tracks, (Tracks{{one, two}, {three}}));

        first->hide();
        QCOMPARE(saved("a.gsw3").tracks, Tracks{{three}});
        first->show();
        last->hide(); // the separator in front of it stands
        QCOMPARE(saved("a.gsw3").tracks, (Tracks{{one, two}, {}}));
        last->show();
    }

    void randomShowsComeBack()
    {
        QRandomGenerator random(11);
        for (int show = 0; show < 25; ++show) {
            window->resetDocument();
            const int leds = random.bounded(1, 200);
            const int rate = random.bounded(1, 5000);
            ui->Leds->setValue(leds);
            ui->FPS_V->setValue(rate);
            for (int track = random.bounded(1, 5); track > 0; --track) {
                for (int i = random.bounded(5); i > 0; --i) {
                    add(colourBlob(i * second, QColor::fromRgb(random.generate()), random.bounded(10, 900)));
                }
                if (track > 1) {
                    window->on_timeline_add_clicked();
                }
            }
            // The first track stays first, the others come back in the reverse of their order.
            Tracks expected = window->asProject().tracks;
            std::reverse(expected.begin() + 1, expected.end());
            const Project project = saved("show.gsw3");
            ui->Leds->setValue(7);
            ui->FPS_V->setValue(7);
            window->LoadFile(window->currentFile);
            QCOMPARE(window->asProject().tracks, expected);
            QCOMPARE(window->currentTimeline, window->timelines.at(qMin(1, expected.size() - 1)));
            QVERIFY(ledCount == leds && project.ledCount == leds);
            QVERIFY(frameRate == float(rate) && project.frameRate == float(rate));
        }
    }

    void saveAsNamesTheFile()
    {
        const QString before = window->currentFile;
        for (const auto &[typed, name] : {std::pair<QString, QString>(), // cancelled
                                          {"show", "show.gsw3"},
                                          {"show.gsw3", "show.gsw3"},
                                          {"show.GSW3", "show.GSW3.gsw3"}}) {
            add(colourBlob(0));
            window->updateStatus();
            window->currentFile = before;
            const QString path = name.isEmpty() ? before : env->path(name);
            const QString title = name.isEmpty() ? "Glowsmith" : "Glowsmith - " + name + "  ";
            DialogDriver driver;
            driver.answerFile(typed.isEmpty() ? QStringList() : QStringList(env->path(typed)));
            window->on_actionSave_triggered(); // a show without a file asks for one
            QVERIFY2(driver.done(), qPrintable(driver.unexpected.join(' ')));
            QCOMPARE(driver.files().first().title, QString("存檔"));
            QCOMPARE(driver.files().first().filters, QStringList("*.gsw3"));
            QCOMPARE(driver.files().first().directory, before);
            QCOMPARE(window->hasFile, !name.isEmpty());
            QCOMPARE(window->currentFile, path);
            QCOMPARE(window->windowTitle(), title);
            QCOMPARE(env->value("main/currentfile").toString(), name.isEmpty() ? QString() : path);
            if (!name.isEmpty()) {
                add(colourBlob(second));
                window->updateStatus();
                QVERIFY(window->modified);
                QCOMPARE(window->windowTitle(), "Glowsmith - " + name + " *");
                window->on_actionSave_triggered(); // and this time asks no more
                QCOMPARE(window->windowTitle(), title);
                QCOMPARE(glow::readProject(contentOf(path)).tracks.first().size(), 2);
                QVERIFY(QFile::remove(path));
            }
            driver.answerBox(QMessageBox::Yes);
            QVERIFY(window->on_actionNew_triggered());
        }
    }

    void failedSaveKeepsTheOldFile()
    {
        add(colourBlob(0));
        saved("show.gsw3");
        const QByteArray good = contentOf(window->currentFile);
        add(colourBlob(second));
        window->updateStatus();
        env->setValue("main/currentfile", "before");
        DialogDriver driver;
#ifdef Q_OS_UNIX
        driver.answerBox(QMessageBox::Ok);
        {
            const SmallDisk disk(good.size() + 20);
            window->on_actionSave_triggered();
        }
        QVERIFY2(driver.done(), qPrintable(driver.unexpected.join(' ')));
        QCOMPARE(driver.boxes().first().icon, QMessageBox::Warning);
        QVERIFY(driver.boxes().first().text.contains(window->currentFile));
        QCOMPARE(contentOf(window->currentFile), good);
#endif
        // A file that cannot even be opened is left without a word.
        window->currentFile = env->path("no/such/folder/show.gsw3");
        window->on_actionSave_triggered();
        QVERIFY(driver.done());
        QCOMPARE(window->windowTitle(), QString("Glowsmith - show.gsw3 *"));
        QCOMPARE(env->value("main/currentfile").toString(), QString("before"));
        QCOMPARE(saved("show.gsw3").tracks.first().size(), 2);
        QCOMPARE(window->windowTitle(), QString("Glowsmith - show.gsw3  "));
    }

    void openedShowIsTheBaseOfTheHistory()
    {
        TimelineItem *old = add(colourBlob(0));
        window->updateStatus();
        window->loadItemToEditor(old);
        const QPointer<Timeline> oldTrack = window->currentTimeline;
        ui->timeline_scaler->setValue(100);
        load("show.gsw3", fileOf({{colourBlob(0), colourBlob(second)}, {}}));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

        QVERIFY(oldTrack.isNull());
        QCOMPARE(window->history.index, 0);
        QCOMPARE(window->history.snapshots.size(), 1);
        QVERIFY(ui->NEW_radio->isChecked());
        QVERIFY(window->currentItem == nullptr && window->previewItem == nullptr);
        QVERIFY(window->hasFile);
        QCOMPARE(window->picPath, window->currentFile);
        QCOMPARE(ui->timeline_scaler->value(), ui->timeline_scaler->minimum());
        QCOMPARE(ui->Saved_status->text(), QString("圖樣數：2"));
        QCOMPARE(window->windowTitle(), QString("Glowsmith - show.gsw3  "));
        window->on_actionUndo_triggered();
        QCOMPARE(itemCount(), 2);
        add(colourBlob(2 * second));
        window->updateStatus();
        QCOMPARE(window->windowTitle(), QString("Glowsmith - show.gsw3 *"));
    }

    void failedOpeningLeavesOneEmptyTrack()
    {
        QVERIFY(QDir().mkpath(env->path("folder.gsw3")));
        for (const auto &[path, name] : {std::pair<QString, QString>(env->path("folder.gsw3"), "folder.gsw3"),
                                         {env->path("absent\\x.gsw"), "absent\\x.gsw"},
                                         {"C:\\a\\b.gsw3", "b.gsw3"},
                                         {"b.gsw3", "b.gsw3"}}) {
            add(colourBlob(0));
            window->on_timeline_add_clicked();
            window->updateStatus();
            window->hasFile = true;
            DialogDriver driver;
            if (path.endsWith(".gsw")) {
                QTest::ignoreMessage(QtDebugMsg, "OPEN OLD FILE");
            }
            window->LoadFile(path);
            QVERIFY(driver.boxes().isEmpty());
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            QVERIFY(window->timelines.size() == 1 && itemCount() == 0);
            QCOMPARE(window->history.index, 0);
            QCOMPARE(window->history.snapshots.first()->keys(), QList<Timeline *>{window->currentTimeline});
            QCOMPARE(window->windowTitle(), QString("Glowsmith - %1  ").arg(name));
            QCOMPARE(window->currentFile, path);
            QVERIFY(window->hasFile); // as it was: only a file that was read sets it
        }
    }

    void propNumbersChooseTheRow()
    {
        struct Case
        {
            qint16 leds;
            float rate;
            int row; // 0 is the custom entry, which is not stored
        };
        int stored = 3;
        for (const Case &prop : {Case{48, 1100, 2}, Case{48, 1200, 0}, Case{120, 1800, 5}, Case{20000, 1e30F, 0},
                                 Case{-1, std::numeric_limits<float>::quiet_NaN(), 0}}) {
            load("show.gsw3", fileOf({{}}, prop.leds, prop.rate));
            QVERIFY(window->gadgetGroup->actions().at(prop.row)->isChecked());
            stored = prop.row == 0 ? stored : prop.row;
            QCOMPARE(env->value("main/gadget").toInt(), stored);
            QCOMPARE(ui->Leds->isEnabled(), prop.row == 0);
            QCOMPARE(int(ledCount), qBound(0, int(prop.leds), 999));
            QVERIFY(frameRate >= 0 && frameRate <= 9999);
        }
    }

    void damagedFilesOpenAsFarAsTheyGo()
    {
        const QByteArray whole = fileOf({{colourBlob(0), "short", "shorter"}, {colourBlob(2 * second)}});
        for (int length = whole.size(); length >= 0; length -= whole.size() / 40) {
            load("cut.gsw3", whole.left(length));
            // A blob that is too short stands as a pattern without content.
            int patterns = 0;
            for (const QVector<QByteArray> &track : glow::readProject(whole.left(length)).tracks) {
                patterns += track.size();
            }
            QCOMPARE(itemCount(), patterns);
            QCOMPARE(whatIsWrong(*window), QString());
        }
        for (const QByteArray &bytes : {QByteArray(1 << 20, '\0'), QByteArray(1 << 20, '\xFF'),
                                        QByteArray("this is no project at all. ").repeated(10000)}) {
            for (const char *name : {"foreign.gsw3", "foreign.gsw"}) {
                load(name, bytes);
                QVERIFY(itemCount() <= 1000);
            }
        }

        DialogDriver driver;
        driver.answerBox(QMessageBox::Ok);
        load("endless.gsw3", fileOf(Tracks(1001)));
        QVERIFY(driver.done());
        QCOMPARE(driver.boxes().first().icon, QMessageBox::Warning);
        QCOMPARE(window->timelines.size(), 1000);
        QVERIFY(!window->hasFile); // a save asks for a name, so the file keeps what is not shown
    }

    void showWithoutASongClosesTheSong()
    {
        const QString song = env->path("song.wav");
        songs::writeWav(song, {8000, 1, 1000});
        window->ReadSong(song);
        QTRY_VERIFY_WITH_TIMEOUT(window->hasSong() && window->decodeProgress->isHidden(), 20000);
        QCOMPARE(saved("sung.gsw3").songPath, song);

        load("silent.gsw3", fileOf({{colourBlob(0)}}));
        QVERIFY(!window->hasSong());
        QCOMPARE(ui->Song_dir->text(), QString());
        QVERIFY(window->player->media().isNull());
        QCOMPARE(saved("again.gsw3").songPath, QString("null"));

        window->LoadFile(env->path("sung.gsw3"));
        QTRY_VERIFY_WITH_TIMEOUT(window->hasSong() && window->decodeProgress->isHidden(), 20000);
        // The end of the decode is no change of the show.
        QCOMPARE(window->windowTitle(), QString("Glowsmith - sung.gsw3  "));
    }

    void oldFileIsMadeAnew()
    {
        const QString picture = env->path("picture.png");
        QImage image(60, 30, QImage::Format_RGB32);
        image.fill(Qt::green);
        QVERIFY(image.save(picture));
        ui->timeline_scaler->setValue(100);
        // Lost pictures before and behind a good one: what stands in the editor must not take their place.
        const QByteArray lost = "00:07.000><00:08.000><0?1?" + env->path("gone.png").toUtf8() + "?20|0|0\r\n";
        DialogDriver driver;
        load("old.gsw", "48><1100\r\n" + lost + "00:00.000><00:01.000><0?7?" + picture.toUtf8() + "?50|1|0\r\n" + lost +
                            "00:01.000><00:02.000><1?#00ff00\r\n"
                            "00:02.000><00:04.500><2?3?#ffff00|#000080|\xE5\x85\x89|2|4?12|1|0\r\n"
                            "00:05.000><00:06.000><3?2?#ff0000|#000000|5|2|7?0|1|0\r\n");
        QVERIFY2(driver.boxes().isEmpty(), "nothing on the track is lost");

        QCOMPARE(int(ledCount), 48);
        QCOMPARE(frameRate, 1100.0F);
        QCOMPARE(ui->timeline_scaler->value(), 100);
        QVERIFY(window->hasFile);
        QCOMPARE(window->windowTitle(), QString("Glowsmith - old.gsw  "));
        QCOMPARE(window->history.index, 0);
        QCOMPARE(window->timelines.size(), 1);
        const QList<TimelineItem *> items = window->currentTimeline->items;
        QCOMPARE(items.size(), 4);
        QCOMPARE(items.at(0)->settingsText, QString("0?7?%1?50|1|0").arg(picture));
        QCOMPARE(items.at(0)->repeatCount, 7);
        QCOMPARE(items.at(0)->speedValue, 0);
        QCOMPARE(items.at(0)->thumbnail.toImage().pixelColor(5, 40), QColor(Qt::green));
        QCOMPARE(items.at(1)->settingsText, QString("1?#00ff00"));
        QCOMPARE(items.at(1)->solidColor, QColor(0, 255, 0));
        QCOMPARE(items.at(2)->startTime, QTime(0, 0, 2));
        QCOMPARE(items.at(2)->endTime, QTime(0, 0, 4, 500));
        QCOMPARE(items.at(2)->settingsText, QString("2?3?#ffff00|#000080|光|2|4?12|1|0"));
        QVERIFY(items.at(3)->settingsText.startsWith("3?2?#ff0000|#000000|5|2|7?0|"));
    }

    void oldFileKeepsItsQuirks()
    {
        ui->Spe_revH->setChecked(true);
        ui->Spe_revV->setChecked(false);
        load("old.gsw", "48><1200\n00:05.000><00:06.000><3?2?#ff0000|#000000|5|1|7?0|0|1\n");
        // An effect's flips go to the text tab.
        QCOMPARE(window->currentTimeline->items.first()->settingsText, QString("3?2?#ff0000|#000000|5|1|7?0|1|0"));
        QVERIFY(!ui->Text_revH->isChecked() && ui->Text_revV->isChecked());
        QVERIFY(window->gadgetGroup->actions().first()->isChecked());

        // Saving writes the binary form under the old name, which then reads as text.
        window->on_actionSave_triggered();
        QCOMPARE(glow::readProject(contentOf(window->currentFile)).tracks.first().size(), 1);
        window->LoadFile(window->currentFile);
        QCOMPARE(itemCount(), 0);
    }

private:
    // Saves into a file of that name and reads it back as a value.
    Project saved(const QString &name)
    {
        window->currentFile = env->path(name);
        window->hasFile = true;
        window->on_actionSave_triggered();
        return glow::readProject(contentOf(env->path(name)));
    }
    void load(const QString &name, const QByteArray &bytes)
    {
        QVERIFY(put(env->path(name), bytes));
        window->LoadFile(env->path(name));
    }
    int itemCount() const
    {
        int count = 0;
        for (const Timeline *track : window->timelines) {
            count += track->items.size();
        }
        return count;
    }
};

QTEST_MAIN(TestProject)
#include "test_project.moc"
