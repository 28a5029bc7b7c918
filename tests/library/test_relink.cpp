// Lost pictures in the window: the question, the search through folders, the editor's own question, and the picture
// library.
#include "app/mainwindow.h"
#include "app/settingstext.h"
#include "support/dialogdriver.h"
#include "support/testenv.h"
#include "support/windowcheck.h"
#include "timeline/timeline.h"
#include "timeline/timelineitem.h"
#include "ui_mainwindow.h"

#include <QDir>
#include <QFileDialog>
#include <QImage>
#include <QtTest>

namespace {

const QString countText = QStringLiteral("張圖片遺失，是否搜尋並取代遺失圖片？");

} // namespace

class TestRelink : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void nothingLostAsksNothing();
    void countsEveryItemOfEveryTrack();
    void relinksThroughNestedFolders();
    void asksAgainForWhatStaysLost();
    void cancelledFolderEndsTheSearch();
    void editorAsksForAReplacement();
    void gathersThePictures();
    void gathersNothingFromAShowWithoutPictures();

private:
    QString picture(const QString &name, const QColor &colour = Qt::red);
    QString lost(const QString &name) const { return env->path(QStringLiteral("gone/") + name); }
    TimelineItem *add(const QString &settings, int kind, int startMs);
    TimelineItem *addPicture(const QString &path, int startMs)
    {
        return add(glow::composePicture(1, path, 0, false, false), glow::PicturePattern, startMs);
    }
    static QString pathOf(const TimelineItem *item) { return glow::parseSettings(item->settingsText).picturePath(); }

    QScopedPointer<TestEnv> env;
    QScopedPointer<MainWindow> window;
};

void TestRelink::init()
{
    env.reset(new TestEnv);
    window.reset(new MainWindow);
    window->show();
}

void TestRelink::cleanup()
{
    window.reset();
    env.reset();
}

QString TestRelink::picture(const QString &name, const QColor &colour)
{
    const QString path = env->path(name);
    QDir().mkpath(QFileInfo(path).path());
    QImage image(30, 20, QImage::Format_RGB32);
    image.fill(colour);
    return image.save(path, "PNG") ? path : QString();
}

TimelineItem *TestRelink::add(const QString &settings, int kind, int startMs)
{
    glow::PatternRecord record;
    record.thumbnail = QPixmap(40, 85);
    record.thumbnail.fill(Qt::green);
    record.startTime = glow::timeOf(startMs);
    record.endTime = glow::timeOf(startMs + 1000);
    record.repeatCount = 1;
    record.patternKind = kind;
    record.settingsText = settings;
    auto *item = new TimelineItem(glow::writePattern(record), window->currentTimeline);
    window->currentTimeline->addTimelineItem(item);
    return item;
}

void TestRelink::nothingLostAsksNothing()
{
    addPicture(picture(QStringLiteral("a.png")), 0);
    add(QStringLiteral("2?1?/gone/b.png|#000000|x|0|0?5|0|0"), glow::TextPattern, 1000);
    add(QStringLiteral("1?#ff0000"), glow::ColourPattern, 2000);
    add(QString(), glow::PicturePattern, 3000);
    DialogDriver driver;
    QCOMPARE(window->scanMissingPictures(), 1);
    QVERIFY(driver.done());
    QVERIFY(driver.boxes().isEmpty());
}

void TestRelink::countsEveryItemOfEveryTrack()
{
    addPicture(lost(QStringLiteral("a.png")), 0);
    addPicture(lost(QStringLiteral("a.png")), 1000);
    window->on_timeline_add_clicked();
    addPicture(lost(QStringLiteral("a.png")), 0);
    DialogDriver driver;
    driver.answerBox(QMessageBox::No);
    QCOMPARE(window->scanMissingPictures(), 0);
    QVERIFY(driver.done());
    const DialogDriver::Box box = driver.boxes().first();
    QCOMPARE(box.title, QStringLiteral("圖片遺失"));
    QCOMPARE(box.text, QStringLiteral("3") + countText);
    QCOMPARE(box.buttons, QMessageBox::Yes | QMessageBox::No);
    QCOMPARE(box.defaultButton, QMessageBox::Yes);
}

void TestRelink::relinksThroughNestedFolders()
{
    const QString kept = picture(QStringLiteral("kept.png"));
    const QString deepA = picture(QStringLiteral("found/1/2/3/a.png"));
    const QString deepB = picture(QStringLiteral("found/4/my b.png"));
    TimelineItem *first = addPicture(lost(QStringLiteral("a.png")), 0);
    TimelineItem *there = addPicture(kept, 1000);
    window->on_timeline_add_clicked();
    TimelineItem *second = addPicture(lost(QStringLiteral("b.png")), 0);
    TimelineItem *third = addPicture(lost(QStringLiteral("a.png")), 1000);
    window->updateStatus();
    const QImage thumbnail = first->thumbnail.toImage();
    const QString picPath = window->picPath;
    const int snapshots = window->history.snapshots.size();

    DialogDriver driver;
    driver.answerBox(QMessageBox::Yes);
    driver.answerFile({env->path(QStringLiteral("found"))});
    QCOMPARE(window->scanMissingPictures(), 0);
    QVERIFY2(driver.done(), qPrintable(driver.unexpected.join(u' ')));
    QCOMPARE(driver.boxes().size(), 1); // nothing is lost any more, so nothing is asked again
    QCOMPARE(driver.files().first().title, QStringLiteral("圖片位置"));

    QCOMPARE(pathOf(first), deepA);
    QCOMPARE(pathOf(second), deepB);
    QCOMPARE(pathOf(third), deepA);
    QCOMPARE(pathOf(there), kept);
    QCOMPARE(first->settingsText, QStringLiteral("0?1?%1?0|0|0").arg(deepA));
    QCOMPARE(first->thumbnail.toImage(), thumbnail);
    QCOMPARE(window->picPath, picPath);
    QCOMPARE(window->history.snapshots.size(), snapshots + 1);
    QCOMPARE(whatIsWrong(*window), QString());
}

void TestRelink::asksAgainForWhatStaysLost()
{
    picture(QStringLiteral("one/a.png"));
    const QString b = picture(QStringLiteral("two/b.png"));
    TimelineItem *first = addPicture(lost(QStringLiteral("a.png")), 0);
    TimelineItem *second = addPicture(lost(QStringLiteral("b.png")), 1000);
    TimelineItem *third = addPicture(lost(QStringLiteral("c.png")), 2000);
    DialogDriver driver;
    driver.answerBox(QMessageBox::Yes);
    driver.answerFile({env->path(QStringLiteral("one"))});
    driver.answerBox(QMessageBox::Yes);
    driver.answerFile({env->path(QStringLiteral("two"))});
    driver.answerBox(QMessageBox::No);
    window->scanMissingPictures();
    QVERIFY2(driver.done(), qPrintable(driver.unexpected.join(u' ')));
    QCOMPARE(driver.boxes().at(1).text, QStringLiteral("2") + countText);
    QCOMPARE(driver.boxes().at(2).text, QStringLiteral("1") + countText);
    QVERIFY(QFile::exists(pathOf(first)));
    QCOMPARE(pathOf(second), b);
    QCOMPARE(pathOf(third), lost(QStringLiteral("c.png")));
}

void TestRelink::cancelledFolderEndsTheSearch()
{
    TimelineItem *item = addPicture(lost(QStringLiteral("a.png")), 0);
    window->updateStatus();
    const int snapshots = window->history.snapshots.size();
    DialogDriver driver;
    bool showsFiles = false;
    driver.answerWith([&showsFiles](QDialog *dialog) {
        const auto *question = qobject_cast<QFileDialog *>(dialog);
        showsFiles = question != nullptr && !question->testOption(QFileDialog::ShowDirsOnly);
        dialog->reject();
    });
    window->on_actionDIR_triggered();
    QVERIFY(driver.done());
    QVERIFY(showsFiles);
    QVERIFY(driver.boxes().isEmpty());
    QCOMPARE(pathOf(item), lost(QStringLiteral("a.png")));
    QCOMPARE(window->history.snapshots.size(), snapshots);
}

void TestRelink::editorAsksForAReplacement()
{
    const QString old = picture(QStringLiteral("old.png"), Qt::blue);
    const QString fresh = picture(QStringLiteral("fresh.png"), Qt::yellow);
    window->picload(old);
    TimelineItem *item = addPicture(lost(QStringLiteral("a.png")), 0);
    const QByteArray blob = item->itemData;

    DialogDriver driver;
    driver.answerBox(QMessageBox::No);
    window->loadItemToEditor(item);
    QVERIFY(driver.done());
    QCOMPARE(driver.boxes().first().title, QStringLiteral("圖片遺失"));
    QCOMPARE(driver.boxes().first().text, QStringLiteral("圖片遺失，是否替換遺失圖片？"));
    QCOMPARE(window->ui->PicDir->text(), old);

    driver.answerBox(QMessageBox::Yes);
    driver.answerFile({});
    window->loadItemToEditor(item);
    QVERIFY(driver.done());
    QCOMPARE(window->ui->PicDir->text(), old);

    driver.answerBox(QMessageBox::Yes);
    driver.answerFile({fresh});
    window->loadItemToEditor(item);
    QVERIFY2(driver.done(), qPrintable(driver.unexpected.join(u' ')));
    QCOMPARE(driver.files().last().title, QStringLiteral("取代圖片"));
    QCOMPARE(window->ui->PicDir->text(), fresh);
    QCOMPARE(item->itemData, blob);

    window->on_Add_Button_clicked();
    QCOMPARE(pathOf(item), fresh);
    QCOMPARE(item->thumbnail.toImage().pixelColor(5, 40), QColor(Qt::yellow));
}

void TestRelink::gathersThePictures()
{
    const QString one = picture(QStringLiteral("one/same.png"), Qt::red);
    const QString two = picture(QStringLiteral("two/same.png"), Qt::blue);
    const QString three = picture(QStringLiteral("two/other.png"), Qt::blue);
    addPicture(one, 0);
    addPicture(lost(QStringLiteral("gone.png")), 1000);
    window->on_timeline_add_clicked();
    TimelineItem *item = addPicture(two, 0);
    addPicture(three, 1000);
    add(QStringLiteral("2?1?%1|#000000|x|0|0?5|0|0").arg(three), glow::TextPattern, 2000);
    const QString folder = env->path(QStringLiteral("gathered"));
    QVERIFY(QDir().mkpath(folder));

    DialogDriver driver;
    driver.answerFile({});
    window->on_actionSQL_triggered();
    QVERIFY(QDir(folder).isEmpty());

    driver.answerFile({folder});
    driver.answerBox(QMessageBox::Ok);
    window->on_actionSQL_triggered();
    QVERIFY2(driver.done(), qPrintable(driver.unexpected.join(u' ')));
    QCOMPARE(driver.files().last().title, QStringLiteral("圖片儲存位置"));
    QCOMPARE(driver.boxes().first().title, QString());
    QCOMPARE(driver.boxes().first().text, QStringLiteral("圖庫匯出完成"));
    QCOMPARE(QDir(folder).entryList(QDir::Files, QDir::Name),
             (QStringList{QStringLiteral("other.png"), QStringLiteral("same.png")}));
    QCOMPARE(QImage(folder + QStringLiteral("/same.png")).pixelColor(0, 0), QColor(Qt::red));
    QCOMPARE(pathOf(item), two);
}

void TestRelink::gathersNothingFromAShowWithoutPictures()
{
    add(QStringLiteral("1?#ff0000"), glow::ColourPattern, 0);
    add(QString(), glow::PicturePattern, 1000);
    const QString folder = env->path(QStringLiteral("gathered"));
    QVERIFY(QDir().mkpath(folder));
    DialogDriver driver;
    driver.answerFile({folder});
    driver.answerBox(QMessageBox::Ok);
    window->on_actionSQL_triggered();
    QVERIFY(driver.done());
    QVERIFY(QDir(folder).isEmpty());
}

QTEST_MAIN(TestRelink)
#include "test_relink.moc"
