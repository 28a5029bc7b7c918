// Projects in the window: saving, opening, both formats, and what failures leave behind.
#include "show/model/projectfile.h"
#include "show/model/propvalues.h"
#include "song/songmaker.h"
#include "support/windowtest.h"

#include <QActionGroup>
#include <QProgressDialog>

using glow::Project;
using Tracks = QVector<QVector<QByteArray>>;

class TestProject : public WindowTest
{
    Q_OBJECT

private slots:
    void tracksComeBackButTheHidden()
    {
        for (const int patterns : {2, 0, 3, 1}) {
            for (int i = 0; i < patterns; ++i) {
                add(colourAt(patterns * 100 + i * 1000));
            }
            window->on_timeline_add_clicked();
        }
        const Tracks whole = window->asProject().tracks;
        QCOMPARE(saved("whole.gsw3").tracks, whole);
        window->timelines.at(1)->hide();
        QCOMPARE(saved("some.gsw3").tracks, (Tracks{whole.at(0), whole.at(2), whole.at(3), whole.at(4)}));
        window->timelines.at(1)->show();
        window->timelines.last()->hide(); // the separator in front of it stands
        QCOMPARE(saved("some.gsw3").tracks, (Tracks{whole.at(0), whole.at(1), whole.at(2), whole.at(3), {}}));

        window->LoadFile(env->path("whole.gsw3"));
        // The first track stays first, the others come back in the reverse of their order.
        QCOMPARE(window->asProject().tracks, (Tracks{whole.at(0), whole.at(4), whole.at(3), whole.at(2), whole.at(1)}));
        QCOMPARE(window->currentTimeline, window->timelines.at(1));
    }

    void saveAsNamesTheFile()
    {
        add(colourAt(0));
        DialogDriver driver;
        const QString before = window->currentFile;
        for (const auto &[typed, name] : {std::pair<QString, QString>(), // cancelled
                                          {"show.gsw3", "show.gsw3"},
                                          {"show.GSW3", "show.GSW3.gsw3"}}) {
            window->currentFile = before;
            window->hasFile = false;
            driver.answerFile(typed.isEmpty() ? QStringList() : QStringList(env->path(typed)));
            window->on_actionSave_triggered(); // a show without a file asks for one
            QCOMPARE(driver.files().last().directory, before);
            QCOMPARE(window->hasFile, !name.isEmpty());
            QCOMPARE(window->currentFile, name.isEmpty() ? before : env->path(name));
            QCOMPARE(env->value("main/currentfile").toString(), name.isEmpty() ? QString() : env->path(name));
        }
        add(colourAt(1000));
        window->updateStatus();
        QCOMPARE(window->windowTitle(), QString("Glowsmith - show.GSW3.gsw3 *"));
        window->on_actionSave_triggered(); // and this time asks no more
        QVERIFY2(driver.done(), qPrintable(driver.unexpected.join(' ')));
        QCOMPARE(window->windowTitle(), QString("Glowsmith - show.GSW3.gsw3  "));
        QCOMPARE(glow::readProject(contentOf(window->currentFile)).tracks.first().size(), 2);
    }

    void openingLeavesNothingOfTheOldShow()
    {
        QVERIFY(QDir().mkpath(env->path("folder.gsw3")));
        QVERIFY(put(env->path("show.gsw3"), fileOf({{colourAt(0), colourAt(1000)}, {}})));
        for (const auto &[path, name] : {std::pair<QString, QString>(env->path("folder.gsw3"), "folder.gsw3"),
                                         {"C:\\a\\b.gsw3", "b.gsw3"},
                                         {env->path("show.gsw3"), "show.gsw3"}}) {
            window->loadItemToEditor(add(colourAt(0)));
            const QPointer<Timeline> oldTrack = window->currentTimeline;
            window->on_timeline_add_clicked();
            window->updateStatus();
            ui->timeline_scaler->setValue(100);
            DialogDriver driver;
            window->LoadFile(path);
            QVERIFY(driver.done());
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            QVERIFY(oldTrack.isNull() && window->currentItem == nullptr && window->previewItem == nullptr);
            const bool succeeds = name == "show.gsw3";
            QVERIFY(window->timelines.size() == (succeeds ? 2 : 1) && itemCount() == (succeeds ? 2 : 0));
            QVERIFY(window->hasFile == succeeds && window->currentFile == path && window->picPath == path);
            QCOMPARE(window->windowTitle(), QString("Glowsmith - %1  ").arg(name));
            QCOMPARE(window->history.index, 0); // opening is no change
        }
        QCOMPARE(ui->timeline_scaler->value(), ui->timeline_scaler->minimum());
    }

    void propNumbersChooseTheRow()
    {
        using Case = std::tuple<qint16, float, int>; // LEDs, rate, row: 0 is the custom entry
        for (const auto &[leds, rate, row] :
             {Case{48, 1100, 2}, {48, 1200, 0}, {120, 1800, 5}, {20000, 1e30F, 0}, {-1, std::nanf(""), 0}}) {
            load("show.gsw3", fileOf({{}}, leds, rate));
            QVERIFY(gadget(row)->isChecked() && ui->Leds->isEnabled() == (row == 0));
            QCOMPARE(int(ledCount), qBound(0, int(leds), 999));
            QVERIFY(frameRate >= 0 && frameRate <= 9999);
            const Project again = saved("show.gsw3");
            QVERIFY(again.ledCount == ledCount && again.frameRate == frameRate);
        }
    }

    void foreignFilesOpenAsFarAsTheyGo()
    {
        // Blobs that are too short stand as patterns without content, up to a thousand.
        load("zeros.gsw3", fileOf({{colourAt(0)}, {}}) + QByteArray(8000, '\0'));
        QCOMPARE(itemCount(), 1001);
        DialogDriver driver;
        driver.answerBox(QMessageBox::Ok);
        load("endless.gsw3", fileOf(Tracks(1001)));
        QVERIFY(driver.done());
        QCOMPARE(window->timelines.size(), 1000);
        QVERIFY(!window->hasFile); // a save asks for a name, so the file keeps what is not shown
    }

    void showWithoutASongClosesTheSong()
    {
        const QString song = env->path("song.wav");
        songs::writeWav(song, {8000, 1, 1000});
        load("sung.gsw3", glow::writeProject({48, 1100, song, {{colourAt(0)}}}));
        QTRY_VERIFY_WITH_TIMEOUT(window->hasSong() && window->decodeProgress->isHidden(), 20000);
        // The end of the decode is no change of the show.
        QCOMPARE(window->windowTitle(), QString("Glowsmith - sung.gsw3  "));
        QCOMPARE(saved("again.gsw3").songPath, song);
        load("silent.gsw3", fileOf({{colourAt(0)}}));
        QVERIFY(!window->hasSong() && window->player->media().isNull() && ui->Song_dir->text().isEmpty());
        QCOMPARE(saved("again.gsw3").songPath, QString("null"));
    }

    void oldFileIsMadeAnew()
    {
        const QString picture = env->path("picture.png");
        QImage image(60, 30, QImage::Format_RGB32);
        image.fill(Qt::green);
        QVERIFY(image.save(picture));
        ui->timeline_scaler->setValue(100);
        ui->Spe_revH->setChecked(true);
        // Lost pictures before and behind a good one: what stands in the editor must not take their place.
        const QByteArray lost = "00:07.000><00:08.000><0?1?" + env->path("gone.png").toUtf8() + "?20|0|0\r\n";
        DialogDriver driver;
        load("old.gsw", "48><1200\r\n" + lost + "00:00.000><00:01.000><0?7?" + picture.toUtf8() + "?50|1|0\r\n" + lost +
                            "00:01.000><00:02.000><1?#00ff00\r\n"
                            "00:02.000><00:04.500><2?3?#ffff00|#000080|\xE5\x85\x89|2|4?12|1|0\n"
                            "00:05.000><01:06.250><3?2?#ff0000|#000000|5|1|7?0|0|1\n");
        QVERIFY2(driver.done(), "nothing on the track is lost");

        QVERIFY(ledCount == 48 && frameRate == 1200.0F && gadget(0)->isChecked());
        QCOMPARE(ui->timeline_scaler->value(), 100);
        QCOMPARE(window->windowTitle(), QString("Glowsmith - old.gsw  "));
        QCOMPARE(spans(window->currentTimeline), QString("0-1000 1000-2000 2000-4500 5000-66250"));
        // An effect's flips go to the text tab.
        QCOMPARE(window->settingsTexts(),
                 QStringList({"0?7?" + picture + "?50|1|0", "1?#00ff00", "2?3?#ffff00|#000080|光|2|4?12|1|0",
                              "3?2?#ff0000|#000000|5|1|7?0|1|0"}));
        QVERIFY(!ui->Text_revH->isChecked() && ui->Text_revV->isChecked());
        const TimelineItem *first = window->currentTimeline->items.first();
        QVERIFY(first->repeatCount == 7 && first->speedValue == 0);
        QCOMPARE(first->thumbnail.toImage().pixelColor(5, 40), QColor(Qt::green));

        // Saving writes the binary form under the old name, which then reads as text.
        QCOMPARE(saved("old.gsw").tracks.first().size(), 4);
        window->LoadFile(window->currentFile);
        QCOMPARE(itemCount(), 0);
    }

private:
    static QByteArray colourAt(int startMs) { return patternBlob("1?#ff0000", startMs); }
    static QByteArray fileOf(const Tracks &tracks, qint16 leds = 48, float rate = 1100)
    {
        return glow::writeProject({leds, rate, "null", tracks});
    }

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
        window->hasFile = false;
        QVERIFY(put(env->path(name), bytes));
        window->LoadFile(env->path(name));
    }
    QAction *gadget(int row) const { return window->gadgetGroup->actions().at(row); }
    int itemCount() const { return window->settingsTexts().size(); }
};

QTEST_MAIN(TestProject)
#include "test_project.moc"
