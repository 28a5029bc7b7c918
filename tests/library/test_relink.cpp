// Lost pictures in the window: the question, the search through folders, the editor's own question, and the picture
// library.
#include "app/settingstext.h"
#include "support/dialogdriver.h"
#include "support/samples.h"
#include "support/windowtest.h"
#include "timeline/timelineitem.h"
#include "ui_mainwindow.h"

#include <QFileDialog>
#include <QImage>
#include <QtTest>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

class TestRelink : public WindowTest
{
    Q_OBJECT

private slots:
    void countsLostPicturesOfEveryTrack();
    void relinksThroughNestedFolders();
    void cancelledFolderEndsTheSearch();
    void editorAsksForAReplacement();
    void gathersThePictures();

private:
    QString picture(const QString &name, const QColor &colour = Qt::red);
    QString lost(const QString &name) const { return env->path("gone/" + name); }
    TimelineItem *addPicture(const QString &path, int startMs)
    {
        return add(patternBlob(glow::composePicture(1, path, 0, false, false), startMs));
    }
    static QString pathOf(const TimelineItem *item) { return glow::parseSettings(item->settingsText).picturePath(); }
};

QString TestRelink::picture(const QString &name, const QColor &colour)
{
    const QString path = env->path(name);
    QDir().mkpath(QFileInfo(path).path());
    QImage image(30, 20, QImage::Format_RGB32);
    image.fill(colour);
    return image.save(path, "PNG") ? path : QString();
}

void TestRelink::countsLostPicturesOfEveryTrack()
{
    addPicture(picture("a.png"), 0);
    add(patternBlob("2?1?/gone/b.png|#000000|x|0|0?5|0|0", 1000));
    add(patternBlob("1?#ff0000", 2000));
    add(patternBlob(QString(), 3000));
    DialogDriver driver;
    QCOMPARE(window->scanMissingPictures(), 1);
    QVERIFY(driver.done() && driver.boxes().isEmpty());

    addPicture(lost("a.png"), 4000);
    addPicture(lost("a.png"), 5000);
    window->on_timeline_add_clicked();
    addPicture(lost("a.png"), 0);
    driver.answerBox(QMessageBox::No);
    QCOMPARE(window->scanMissingPictures(), 0);
    QVERIFY(driver.done());
    const DialogDriver::Box box = driver.boxes().first();
    QCOMPARE(box.title, QString("圖片遺失"));
    QCOMPARE(box.text, QString("3張圖片遺失，是否搜尋並取代遺失圖片？"));
    QCOMPARE(box.buttons, QMessageBox::Yes | QMessageBox::No);
    QCOMPARE(box.defaultButton, QMessageBox::Yes);
}

void TestRelink::relinksThroughNestedFolders()
{
    const QString kept = picture("kept.png");
    const QString deepA = picture("found/1/2/3/a.png");
    const QString deepB = picture("found/4/my b.png");
    const QString elsewhere = picture("other/c.png");
    QVector<const TimelineItem *> items = {addPicture(lost("a.png"), 0), addPicture(kept, 1000)};
    window->on_timeline_add_clicked();
    for (const char *name : {"b.png", "a.png", "c.png", "d.png"}) {
        items << addPicture(lost(name), items.size() * 1000);
    }
    window->updateStatus();
    const QImage thumbnail = items.first()->thumbnail.toImage();
    const QString picPath = window->picPath;

    // As long as something is lost and the user has folders to try, the question comes again with what is left.
    DialogDriver driver;
    for (const char *folder : {"found", "other"}) {
        driver.answerBox(QMessageBox::Yes);
        driver.answerFile({env->path(folder)});
    }
    driver.answerBox(QMessageBox::No);
    QCOMPARE(window->scanMissingPictures(), 0);
    QVERIFY2(driver.done(), qPrintable(driver.unexpected.join(' ')));
    QStringList counts;
    for (const DialogDriver::Box &box : driver.boxes()) {
        counts << box.text.left(1);
    }
    QCOMPARE(counts, (QStringList{"5", "2", "1"}));
    QCOMPARE(driver.files().first().title, QString("圖片位置"));
    QStringList paths;
    for (const TimelineItem *item : items) {
        paths << pathOf(item);
    }
    QCOMPARE(paths, (QStringList{deepA, kept, deepB, deepA, elsewhere, lost("d.png")}));
    QCOMPARE(items.first()->settingsText, QString("0?1?%1?0|0|0").arg(deepA));
    QCOMPARE(items.first()->thumbnail.toImage(), thumbnail);
    QCOMPARE(window->picPath, picPath);
    QCOMPARE(window->history.index, 2);

    // With the last one found nothing is asked any more.
    picture("last/d.png");
    driver.answerFile({env->path("last")});
    window->on_actionDIR_triggered();
    QVERIFY(driver.done());
    QCOMPARE(driver.boxes().size(), 3);
}

void TestRelink::cancelledFolderEndsTheSearch()
{
    const TimelineItem *item = addPicture(lost("a.png"), 0);
    window->updateStatus();
    DialogDriver driver;
    bool showsFiles = false;
    driver.answerWith([&showsFiles](QDialog *dialog) {
        const auto *question = qobject_cast<QFileDialog *>(dialog);
        showsFiles = question != nullptr && !question->testOption(QFileDialog::ShowDirsOnly);
        dialog->reject();
    });
    window->on_actionDIR_triggered();
    QVERIFY(driver.done() && driver.boxes().isEmpty());
    QVERIFY(showsFiles);
    QCOMPARE(pathOf(item), lost("a.png"));
}

void TestRelink::editorAsksForAReplacement()
{
    const QString old = picture("old.png", Qt::blue);
    const QString fresh = picture("fresh.png", Qt::yellow);
    window->picload(old);
    TimelineItem *item = addPicture(lost("a.png"), 0);
    const QByteArray blob = item->itemData;

    // Refused, then no file chosen, then one.
    for (int round = 0; round < 3; ++round) {
        DialogDriver driver;
        driver.answerBox(round == 0 ? QMessageBox::No : QMessageBox::Yes);
        if (round > 0) {
            driver.answerFile(round == 1 ? QStringList() : QStringList(fresh));
        }
        window->loadItemToEditor(item);
        QVERIFY2(driver.done(), qPrintable(driver.unexpected.join(' ')));
        QCOMPARE(driver.boxes().first().title, QString("圖片遺失"));
        QCOMPARE(driver.boxes().first().text, QString("圖片遺失，是否替換遺失圖片？"));
        QVERIFY(driver.files().isEmpty() || driver.files().first().title == "取代圖片");
        QCOMPARE(ui->PicDir->text(), round < 2 ? old : fresh);
        QCOMPARE(item->itemData, blob); // until the edit is applied
    }
    window->on_Add_Button_clicked();
    QCOMPARE(pathOf(item), fresh);
    QCOMPARE(item->thumbnail.toImage().pixelColor(5, 40), QColor(Qt::yellow));
}

void TestRelink::gathersThePictures()
{
    const QString folder = env->path("gathered");
    QVERIFY(QDir().mkpath(folder));
    const auto gather = [&](const QStringList &answer) {
        DialogDriver driver;
        driver.answerFile(answer);
        if (!answer.isEmpty()) {
            driver.answerBox(QMessageBox::Ok);
        }
        window->on_actionSQL_triggered();
        QVERIFY2(driver.done(), qPrintable(driver.unexpected.join(' ')));
        QCOMPARE(driver.files().last().title, QString("圖片儲存位置"));
        QVERIFY(answer.isEmpty() || driver.boxes().first().title.isEmpty());
        QVERIFY(answer.isEmpty() || driver.boxes().first().text == "圖庫匯出完成");
    };
    const QString three = picture("two/other.png", Qt::blue);
    add(patternBlob("1?#ff0000", 0));
    add(patternBlob(QString(), 1000));
    add(patternBlob(QString("2?1?%1|#000000|x|0|0?5|0|0").arg(three), 2000));
    gather({folder});
    QVERIFY(QDir(folder).isEmpty());

    addPicture(picture("one/same.png", Qt::red), 3000);
    addPicture(lost("gone.png"), 4000);
#ifdef Q_OS_UNIX
    // Reading a pipe that nobody fills would never end.
    const QString pipe = env->path("pipe.png");
    QCOMPARE(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    addPicture(pipe, 5000);
#endif
    window->on_timeline_add_clicked();
    const QString two = picture("two/same.png", Qt::blue);
    const TimelineItem *item = addPicture(two, 0);
    addPicture(three, 1000);
    gather({});
    QVERIFY(QDir(folder).isEmpty());
    gather({folder});
    QCOMPARE(QDir(folder).entryList(QDir::Files, QDir::Name), (QStringList{"other.png", "same.png"}));
    QCOMPARE(QImage(folder + "/same.png").pixelColor(0, 0), QColor(Qt::red));
    QCOMPARE(pathOf(item), two);
}

QTEST_MAIN(TestRelink)
#include "test_relink.moc"
