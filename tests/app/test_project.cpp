// Projects in the window: saving, opening, both formats, and what failures leave behind.
#include "app/mainwindow.h"
#include "app/projectfile.h"
#include "app/propvalues.h"
#include "app/settingstext.h"
#include "smalldisk.h"
#include "support/dialogdriver.h"
#include "support/testenv.h"
#include "support/windowcheck.h"
#include "timeline/timeline.h"
#include "timeline/timelineitem.h"
#include "timeline/timescale.h"
#include "ui_mainwindow.h"

#include <QActionGroup>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QPointer>
#include <QProgressDialog>
#include <QRandomGenerator>
#include <QtTest>

using glow::Project;

namespace {

constexpr int second = 1000;

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot be read");
}

void put(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
}

glow::PatternRecord randomRecord(QRandomGenerator &random, int startMs)
{
    glow::PatternRecord record;
    QImage picture(random.bounded(1, 120), 85, QImage::Format_RGB32);
    picture.fill(QColor::fromRgb(random.generate()));
    picture.setPixelColor(0, 0, QColor::fromRgb(random.generate()));
    record.thumbnail = QPixmap::fromImage(picture);
    record.startTime = glow::timeOf(startMs);
    record.endTime = glow::timeOf(startMs + random.bounded(10, 900));
    record.repeatCount = random.bounded(1, 500);
    record.patternKind = random.bounded(4);
    record.speedValue = random.bounded(10) * 2;
    if (record.patternKind == glow::ColourPattern) {
        record.solidColor = QColor::fromRgb(random.generate());
        record.settingsText = glow::composeColour(record.solidColor);
    } else {
        record.settingsText = glow::composeText(record.repeatCount, Qt::red, Qt::blue, QStringLiteral("光"), 1, 2,
                                                random.bounded(20), false, true);
    }
    return record;
}

QByteArray colourBlob(int startMs, const QColor &colour = Qt::red)
{
    glow::PatternRecord record;
    record.thumbnail = QPixmap(85, 85);
    record.thumbnail.fill(colour);
    record.startTime = glow::timeOf(startMs);
    record.endTime = glow::timeOf(startMs + 500);
    record.repeatCount = 1;
    record.patternKind = glow::ColourPattern;
    record.solidColor = colour;
    record.settingsText = glow::composeColour(colour);
    return glow::writePattern(record);
}

Project projectOf(const QVector<QVector<QByteArray>> &tracks)
{
    Project project;
    project.ledCount = 48;
    project.frameRate = 1100;
    project.tracks = tracks;
    return project;
}

bool sameRecord(const glow::PatternRecord &a, const glow::PatternRecord &b)
{
    return a.thumbnail.toImage().convertToFormat(QImage::Format_ARGB32) ==
               b.thumbnail.toImage().convertToFormat(QImage::Format_ARGB32) &&
           a.startTime == b.startTime && a.endTime == b.endTime && a.solidColor == b.solidColor &&
           a.repeatCount == b.repeatCount && a.patternKind == b.patternKind && a.speedValue == b.speedValue &&
           a.settingsText == b.settingsText;
}

// One second of a quiet tone: 8000 Hz, mono, 8 bits.
QByteArray waveFile()
{
    const QByteArray samples = QByteArray(8, '\x80').append(QByteArray(8, '\x90')).repeated(500);
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream.writeRawData("RIFF", 4);
    stream << quint32(36 + samples.size());
    stream.writeRawData("WAVEfmt ", 8);
    stream << quint32(16) << quint16(1) << quint16(1) << quint32(8000) << quint32(8000) << quint16(1) << quint16(8);
    stream.writeRawData("data", 4);
    stream << quint32(samples.size());
    return bytes + samples;
}

} // namespace

class TestProject : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void emptyShowTakesTwentyTwoBytes();
    void savesEveryTrackAndNoHiddenOne();
    void randomShowsComeBack();
    void laterTracksComeBackReversed();
    void saveAsNamesTheFile_data();
    void saveAsNamesTheFile();
    void failedSaveKeepsTheOldFile();
    void unopenableFileIsASilentReturn();
    void openedShowIsTheBaseOfTheHistory();
    void failedOpeningLeavesOneEmptyTrack();
    void propNumbersChooseTheRow();
    void damagedFilesOpenAsFarAsTheyGo();
    void foreignFilesOpenQuickly();
    void tooManyTracksAreNotForgotten();
    void showWithoutASongClosesTheSong();
    void oldFileIsMadeAnew();
    void oldFileKeepsItsQuirks();
    void oldFileDropsLostPictures();
    void titleFollowsThePath();

private:
    TimelineItem *add(const QByteArray &blob)
    {
        auto *item = new TimelineItem(blob, window->currentTimeline);
        window->currentTimeline->addTimelineItem(item);
        return item;
    }
    // Saves into a file of that name and reads it back as a value.
    Project saved(const QString &name);
    void load(const QString &name, const Project &project)
    {
        put(env->path(name), glow::writeProject(project));
        window->LoadFile(env->path(name));
    }
    int itemCount() const;

    QScopedPointer<TestEnv> env;
    QScopedPointer<MainWindow> window;
    Ui::MainWindow *ui = nullptr;
};

void TestProject::init()
{
    env.reset(new TestEnv);
    msPerPixel = 10.0F;
    window.reset(new MainWindow);
    window->show();
    ui = window->ui;
}

void TestProject::cleanup()
{
    QTRY_COMPARE(whatIsWrong(*window), QString());
    window.reset();
    env.reset();
}

Project TestProject::saved(const QString &name)
{
    window->currentFile = env->path(name);
    window->hasFile = true;
    window->on_actionSave_triggered();
    return glow::readProject(contentOf(env->path(name)));
}

int TestProject::itemCount() const
{
    int count = 0;
    for (const Timeline *track : window->timelines) {
        count += track->items.size();
    }
    return count;
}

void TestProject::emptyShowTakesTwentyTwoBytes()
{
    saved(QStringLiteral("empty.gsw3"));
    QCOMPARE(contentOf(env->path(QStringLiteral("empty.gsw3"))),
             QByteArray::fromHex("004640A068000000000000000008006E0075006C006C"));
}

void TestProject::savesEveryTrackAndNoHiddenOne()
{
    Timeline *first = window->currentTimeline;
    const QByteArray one = add(colourBlob(0))->itemData;
    const QByteArray two = add(colourBlob(second, Qt::blue))->itemData;
    window->on_timeline_add_clicked();
    Timeline *last = window->currentTimeline;
    QCOMPARE(saved(QStringLiteral("a.gsw3")).tracks, (QVector<QVector<QByteArray>>{{one, two}, {}}));
    const QByteArray three = add(colourBlob(0))->itemData;
    QCOMPARE(saved(QStringLiteral("a.gsw3")).tracks, (QVector<QVector<QByteArray>>{{one, two}, {three}}));

    first->hide();
    QCOMPARE(saved(QStringLiteral("a.gsw3")).tracks, QVector<QVector<QByteArray>>{{three}});
    first->show();
    last->hide(); // the separator in front of it stands
    QCOMPARE(saved(QStringLiteral("a.gsw3")).tracks, (QVector<QVector<QByteArray>>{{one, two}, {}}));
    last->show();
}

void TestProject::randomShowsComeBack()
{
    QRandomGenerator random(11);
    for (int show = 0; show < 25; ++show) {
        window->resetDocument();
        ui->Leds->setValue(random.bounded(1, 200));
        ui->FPS_V->setValue(random.bounded(1, 5000));
        QVector<QVector<glow::PatternRecord>> tracks(random.bounded(1, 4));
        for (int track = 0; track < tracks.size(); ++track) {
            if (track > 0) {
                window->on_timeline_add_clicked();
            }
            for (int i = random.bounded(5); i > 0; --i) {
                tracks[track].append(*add(glow::writePattern(randomRecord(random, i * 1000))));
            }
        }
        const QList<Timeline *> order = window->timelines;
        const int leds = ui->Leds->value();
        const float rate = frameRate;
        QVector<QVector<glow::PatternRecord>> expected;
        for (const Timeline *track : order) {
            expected.append(QVector<glow::PatternRecord>());
            for (const TimelineItem *item : track->items) {
                expected.last().append(*item);
            }
        }
        // The first track stays first, the others come back in the reverse of their order.
        std::reverse(expected.begin() + 1, expected.end());
        const Project project = saved(QStringLiteral("show.gsw3"));
        QCOMPARE(project.ledCount, qint16(leds));
        QCOMPARE(project.frameRate, rate);

        ui->Leds->setValue(7);
        ui->FPS_V->setValue(7);
        window->LoadFile(env->path(QStringLiteral("show.gsw3")));
        QCOMPARE(int(ledCount), leds);
        QCOMPARE(frameRate, rate);
        QCOMPARE(window->timelines.size(), expected.size());
        for (int track = 0; track < expected.size(); ++track) {
            const QList<TimelineItem *> &items = window->timelines.at(track)->items;
            QCOMPARE(items.size(), expected.at(track).size());
            for (int i = 0; i < items.size(); ++i) {
                QVERIFY(sameRecord(*items.at(i), expected.at(track).at(i)));
            }
        }
        QCOMPARE(whatIsWrong(*window), QString());
    }
}

void TestProject::laterTracksComeBackReversed()
{
    QVector<QVector<QByteArray>> tracks;
    for (int track = 1; track <= 4; ++track) {
        tracks.append(QVector<QByteArray>{colourBlob(track * second)});
    }
    load(QStringLiteral("four.gsw3"), projectOf(tracks));
    QVector<int> starts;
    for (const Timeline *track : qAsConst(window->timelines)) {
        starts.append(glow::msOf(track->items.first()->startTime) / second);
    }
    QCOMPARE(starts, (QVector<int>{1, 4, 3, 2}));
    QCOMPARE(window->currentTimeline, window->timelines.at(1));
}

void TestProject::saveAsNamesTheFile_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("name");
    QTest::newRow("without an extension") << QStringLiteral("show") << QStringLiteral("show.gsw3");
    QTest::newRow("with it") << QStringLiteral("show.gsw3") << QStringLiteral("show.gsw3");
    QTest::newRow("in capitals") << QStringLiteral("show.GSW3") << QStringLiteral("show.GSW3.gsw3");
    QTest::newRow("cancelled") << QString() << QString();
}

void TestProject::saveAsNamesTheFile()
{
    QFETCH(const QString, typed);
    QFETCH(const QString, name);
    add(colourBlob(0));
    window->updateStatus();
    const QString before = window->currentFile;
    DialogDriver driver;
    driver.answerFile(typed.isEmpty() ? QStringList() : QStringList(env->path(typed)));
    window->on_actionSave_triggered(); // a show without a file asks for one
    QVERIFY2(driver.done(), qPrintable(driver.unexpected.join(u' ')));
    QCOMPARE(driver.files().first().title, QStringLiteral("存檔"));
    QCOMPARE(driver.files().first().filters, QStringList(QStringLiteral("*.gsw3")));
    QCOMPARE(driver.files().first().directory, before);
    if (name.isEmpty()) {
        QVERIFY(!window->hasFile);
        QCOMPARE(window->currentFile, before);
        QCOMPARE(window->windowTitle(), QStringLiteral("Glowsmith"));
        return;
    }
    QVERIFY(window->hasFile);
    QCOMPARE(window->currentFile, env->path(name));
    QCOMPARE(window->windowTitle(), QStringLiteral("Glowsmith - %1  ").arg(name));
    QCOMPARE(env->value(QStringLiteral("main/currentfile")).toString(), env->path(name));
    QCOMPARE(glow::readProject(contentOf(env->path(name))).tracks.first().size(), 1);

    add(colourBlob(second));
    window->updateStatus();
    QCOMPARE(window->windowTitle(), QStringLiteral("Glowsmith - %1 *").arg(name));
    window->on_actionSave_triggered(); // and this time asks no more
    QCOMPARE(window->windowTitle(), QStringLiteral("Glowsmith - %1  ").arg(name));
    QCOMPARE(glow::readProject(contentOf(env->path(name))).tracks.first().size(), 2);
}

void TestProject::failedSaveKeepsTheOldFile()
{
#ifdef Q_OS_UNIX
    add(colourBlob(0));
    saved(QStringLiteral("show.gsw3"));
    const QByteArray good = contentOf(window->currentFile);
    add(colourBlob(second));
    window->updateStatus();
    const QString title = window->windowTitle();
    QVERIFY(title.endsWith(u'*'));
    env->setValue(QStringLiteral("main/currentfile"), QStringLiteral("before"));

    DialogDriver driver;
    driver.answerBox(QMessageBox::Ok);
    {
        const SmallDisk disk(good.size() + 20);
        window->on_actionSave_triggered();
    }
    QVERIFY2(driver.done(), qPrintable(driver.unexpected.join(u' ')));
    QCOMPARE(driver.boxes().first().icon, QMessageBox::Warning);
    QVERIFY(driver.boxes().first().text.contains(window->currentFile));
    QCOMPARE(contentOf(window->currentFile), good);
    QCOMPARE(window->windowTitle(), title);
    QCOMPARE(env->value(QStringLiteral("main/currentfile")).toString(), QStringLiteral("before"));

    window->on_actionSave_triggered();
    QCOMPARE(glow::readProject(contentOf(window->currentFile)).tracks.first().size(), 2);
    QVERIFY(!window->windowTitle().endsWith(u'*'));
#else
    QSKIP("needs a limit on file sizes");
#endif
}

void TestProject::unopenableFileIsASilentReturn()
{
    add(colourBlob(0));
    window->updateStatus();
    window->hasFile = true;
    window->currentFile = env->path(QStringLiteral("no/such/folder/show.gsw3"));
    const QString title = window->windowTitle();
    DialogDriver driver;
    window->on_actionSave_triggered();
    QVERIFY(driver.done());
    QVERIFY(driver.boxes().isEmpty());
    QCOMPARE(window->windowTitle(), title);
    QVERIFY(!env->value(QStringLiteral("main/currentfile")).isValid());
}

void TestProject::openedShowIsTheBaseOfTheHistory()
{
    TimelineItem *old = add(colourBlob(0));
    window->updateStatus();
    window->loadItemToEditor(old);
    const QPointer<Timeline> oldTrack = window->currentTimeline;
    ui->timeline_scaler->setValue(100);
    load(QStringLiteral("show.gsw3"), projectOf({{colourBlob(0), colourBlob(second)}, {}}));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    QVERIFY(oldTrack.isNull());
    QCOMPARE(window->history.index, 0);
    QCOMPARE(window->history.snapshots.size(), 1);
    QVERIFY(ui->NEW_radio->isChecked());
    QVERIFY(window->currentItem == nullptr);
    QVERIFY(window->hasFile);
    QCOMPARE(window->picPath, window->currentFile);
    QCOMPARE(ui->timeline_scaler->value(), ui->timeline_scaler->minimum());
    QCOMPARE(ui->Mode_t1->time(), QTime(0, 0));
    QCOMPARE(ui->Mode_t2->time(), QTime(0, 0, 5));
    QVERIFY(ui->Saved_status->text().endsWith(u'2'));
    QCOMPARE(window->windowTitle(), QStringLiteral("Glowsmith - show.gsw3  "));
    window->on_actionUndo_triggered();
    QCOMPARE(itemCount(), 2);

    window->timelines.first()->deleteTimelineItem(window->timelines.first()->items.first());
    add(colourBlob(2 * second));
    window->updateStatus();
    QCOMPARE(window->windowTitle(), QStringLiteral("Glowsmith - show.gsw3 *"));
}

void TestProject::failedOpeningLeavesOneEmptyTrack()
{
    QVERIFY(QDir().mkpath(env->path(QStringLiteral("folder.gsw3"))));
    for (const char *file : {"absent.gsw3", "absent.gsw", "folder.gsw3"}) {
        const QString name = QString::fromLatin1(file);
        add(colourBlob(0));
        window->on_timeline_add_clicked();
        window->updateStatus();
        window->hasFile = true;
        DialogDriver driver;
        window->LoadFile(env->path(name));
        QVERIFY(driver.boxes().isEmpty());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCOMPARE(window->timelines.size(), 1);
        QCOMPARE(itemCount(), 0);
        QCOMPARE(window->history.index, 0);
        QCOMPARE(window->history.snapshots.first()->keys(), QList<Timeline *>{window->currentTimeline});
        QCOMPARE(window->windowTitle(), QStringLiteral("Glowsmith - %1  ").arg(name));
        QCOMPARE(window->currentFile, env->path(name));
        QVERIFY(window->hasFile); // as it was: only a file that was read sets it
    }
}

void TestProject::propNumbersChooseTheRow()
{
    struct Case
    {
        int leds;
        float rate;
        int row; // 0 is the custom entry, which is not stored
    };
    int stored = 3;
    for (const Case &prop : {Case{48, 1100, 2}, Case{48, 1200, 0}, Case{120, 1800, 5}, Case{20000, 1e30F, 0},
                             Case{-1, std::numeric_limits<float>::quiet_NaN(), 0}}) {
        Project project = projectOf({{}});
        project.ledCount = static_cast<qint16>(prop.leds);
        project.frameRate = prop.rate;
        load(QStringLiteral("show.gsw3"), project);
        QVERIFY(window->gadgetGroup->actions().at(prop.row)->isChecked());
        stored = prop.row == 0 ? stored : prop.row;
        QCOMPARE(env->value(QStringLiteral("main/gadget")).toInt(), stored);
        QCOMPARE(ui->Leds->isEnabled(), prop.row == 0);
        QCOMPARE(int(ledCount), qBound(0, prop.leds, 999));
        QVERIFY(frameRate >= 0 && frameRate <= 9999);
    }
}

void TestProject::damagedFilesOpenAsFarAsTheyGo()
{
    const QByteArray whole =
        glow::writeProject(projectOf({{colourBlob(0), colourBlob(second)}, {colourBlob(2 * second)}}));
    const QString path = env->path(QStringLiteral("cut.gsw3"));
    for (int length = 0; length < whole.size(); length += whole.size() / 60) {
        put(path, whole.left(length));
        window->LoadFile(path);
        // A blob that is cut off stands as a pattern without content.
        int patterns = 0;
        for (const QVector<QByteArray> &track : glow::readProject(whole.left(length)).tracks) {
            patterns += track.size();
        }
        QCOMPARE(itemCount(), patterns);
        QCOMPARE(whatIsWrong(*window), QString());
    }
}

void TestProject::foreignFilesOpenQuickly()
{
    const QByteArrayList contents{QByteArray(1 << 20, '\0'), QByteArray(1 << 20, '\xFF'),
                                  QByteArray("this is no project at all. ").repeated(10000)};
    for (const QByteArray &bytes : contents) {
        for (const char *name : {"foreign.gsw3", "foreign.gsw"}) {
            const QString path = env->path(QString::fromLatin1(name));
            put(path, bytes);
            QElapsedTimer watch;
            watch.start();
            window->LoadFile(path);
            QVERIFY2(watch.elapsed() < 60000, qPrintable(QString::number(watch.elapsed())));
            QVERIFY(itemCount() < 10);
            QTRY_COMPARE(whatIsWrong(*window), QString());
        }
    }
}

void TestProject::tooManyTracksAreNotForgotten()
{
    DialogDriver driver;
    driver.answerBox(QMessageBox::Ok);
    load(QStringLiteral("endless.gsw3"), projectOf(QVector<QVector<QByteArray>>(501)));
    QVERIFY(driver.done());
    QCOMPARE(driver.boxes().first().icon, QMessageBox::Warning);
    QCOMPARE(window->timelines.size(), 500);
    QVERIFY(!window->hasFile); // a save asks for a name, so the file keeps what is not shown
}

void TestProject::showWithoutASongClosesTheSong()
{
    const QString song = env->path(QStringLiteral("song.wav"));
    put(song, waveFile());
    window->ReadSong(song);
    QTRY_VERIFY_WITH_TIMEOUT(window->hasSong() && window->decodeProgress->isHidden(), 20000);
    QCOMPARE(saved(QStringLiteral("sung.gsw3")).songPath, song);

    load(QStringLiteral("silent.gsw3"), projectOf({{colourBlob(0)}}));
    QVERIFY(!window->hasSong());
    QCOMPARE(ui->Song_dir->text(), QString());
    QVERIFY(window->player->media().isNull());
    QCOMPARE(saved(QStringLiteral("again.gsw3")).songPath, QStringLiteral("null"));

    window->LoadFile(env->path(QStringLiteral("sung.gsw3")));
    QTRY_VERIFY_WITH_TIMEOUT(window->hasSong(), 20000);
    QTRY_VERIFY_WITH_TIMEOUT(window->decodeProgress->isHidden(), 20000);
    // The end of the decode is no change of the show.
    QCOMPARE(window->windowTitle(), QStringLiteral("Glowsmith - sung.gsw3  "));
}

void TestProject::oldFileIsMadeAnew()
{
    const QString picture = env->path(QStringLiteral("picture.png"));
    QImage image(60, 30, QImage::Format_RGB32);
    image.fill(Qt::green);
    QVERIFY(image.save(picture));
    ui->timeline_scaler->setValue(100);
    const QString path = env->path(QStringLiteral("old.gsw"));
    put(path, "48><1100\r\n"
              "00:00.000><00:01.000><0?7?" +
                  picture.toUtf8() +
                  "?50|1|0\r\n"
                  "00:01.000><00:02.000><1?#00ff00\r\n"
                  "00:02.000><00:04.500><2?3?#ffff00|#000080|\xE5\x85\x89|2|4?12|1|0\r\n"
                  "00:05.000><00:06.000><3?2?#ff0000|#000000|5|2|7?0|1|0\r\n");
    DialogDriver driver;
    window->LoadFile(path);
    QVERIFY2(driver.boxes().isEmpty(), "nothing is lost");

    QCOMPARE(int(ledCount), 48);
    QCOMPARE(frameRate, 1100.0F);
    QCOMPARE(ui->timeline_scaler->value(), 100);
    QVERIFY(window->hasFile);
    QCOMPARE(window->windowTitle(), QStringLiteral("Glowsmith - old.gsw  "));
    QCOMPARE(window->history.index, 0);
    QCOMPARE(window->timelines.size(), 1);
    const QList<TimelineItem *> items = window->currentTimeline->items;
    QCOMPARE(items.size(), 4);
    QCOMPARE(items.at(0)->settingsText, QStringLiteral("0?7?%1?50|1|0").arg(picture));
    QCOMPARE(items.at(0)->repeatCount, 7);
    QCOMPARE(items.at(0)->speedValue, 0);
    QCOMPARE(items.at(0)->thumbnail.toImage().pixelColor(5, 40), QColor(Qt::green));
    QCOMPARE(items.at(1)->settingsText, QStringLiteral("1?#00ff00"));
    QCOMPARE(items.at(1)->solidColor, QColor(0, 255, 0));
    QCOMPARE(items.at(2)->startTime, QTime(0, 0, 2));
    QCOMPARE(items.at(2)->endTime, QTime(0, 0, 4, 500));
    QCOMPARE(items.at(2)->repeatCount, 3);
    QCOMPARE(items.at(2)->settingsText, QStringLiteral("2?3?#ffff00|#000080|光|2|4?12|1|0"));
    QCOMPARE(items.at(3)->repeatCount, 2);
    QVERIFY(items.at(3)->settingsText.startsWith(QStringLiteral("3?2?#ff0000|#000000|5|2|7?0|")));
}

void TestProject::oldFileKeepsItsQuirks()
{
    ui->Spe_revH->setChecked(true);
    ui->Spe_revV->setChecked(false);
    const QString path = env->path(QStringLiteral("old.gsw"));
    put(path, "48><1200\n00:05.000><00:06.000><3?2?#ff0000|#000000|5|1|7?0|0|1\n");
    window->LoadFile(path);
    // An effect's flips go to the text tab.
    QCOMPARE(window->currentTimeline->items.first()->settingsText, QStringLiteral("3?2?#ff0000|#000000|5|1|7?0|1|0"));
    QVERIFY(!ui->Text_revH->isChecked());
    QVERIFY(ui->Text_revV->isChecked());
    QVERIFY(window->gadgetGroup->actions().first()->isChecked());

    // Saving writes the binary form under the old name, which then reads as text.
    window->on_actionSave_triggered();
    QCOMPARE(glow::readProject(contentOf(path)).tracks.first().size(), 1);
    window->LoadFile(path);
    QCOMPARE(itemCount(), 0);
}

void TestProject::oldFileDropsLostPictures()
{
    const QString picture = env->path(QStringLiteral("picture.png"));
    QImage image(60, 30, QImage::Format_RGB32);
    image.fill(Qt::green);
    QVERIFY(image.save(picture));
    const QByteArray lost = "><00:03.000><0?1?" + env->path(QStringLiteral("gone.png")).toUtf8() + "?20|0|0\n";
    const QString path = env->path(QStringLiteral("old.gsw"));
    put(path, "48><1100\n00:02.000" + lost + "00:00.000><00:01.000><0?1?" + picture.toUtf8() + "?50|0|0\n" +
                  "00:01.000" + lost + "00:04.000><00:05.000><1?#00ff00\n");
    DialogDriver driver;
    window->LoadFile(path);
    QVERIFY(driver.boxes().isEmpty());
    const QList<TimelineItem *> items = window->currentTimeline->items;
    QCOMPARE(items.size(), 2);
    QCOMPARE(items.at(0)->settingsText, QStringLiteral("0?1?%1?50|0|0").arg(picture));
    QCOMPARE(items.at(1)->settingsText, QStringLiteral("1?#00ff00"));
}

void TestProject::titleFollowsThePath()
{
    const QMap<QString, QString> titles{{QStringLiteral("/a/b\\c.gsw3"), QStringLiteral("b\\c.gsw3")},
                                        {QStringLiteral("C:\\a\\b.gsw3"), QStringLiteral("b.gsw3")},
                                        {QStringLiteral("b.gsw3"), QStringLiteral("b.gsw3")}};
    for (auto title = titles.begin(); title != titles.end(); ++title) {
        window->LoadFile(title.key());
        QCOMPARE(window->windowTitle(), QStringLiteral("Glowsmith - %1  ").arg(title.value()));
    }
}

QTEST_MAIN(TestProject)
#include "test_project.moc"
