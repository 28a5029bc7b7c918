// The picture tab on the real window: single and several files, gap and flips, files that cannot be shown.
#include "app/propvalues.h"
#include "preview/mygl.h"
#include "support/dialogdriver.h"
#include "support/pixels.h"
#include "support/samples.h"
#include "support/windowtest.h"
#include "timeline/timeline.h"
#include "timeline/timelineitem.h"
#include "ui_mainwindow.h"

#include <QGraphicsPixmapItem>
#include <QGraphicsScene>
#include <QSignalSpy>
#include <QtTest>

class TestPictureTab : public WindowTest
{
    Q_OBJECT

private slots:
    void oneFileIsLoadedAndNotAdded();
    void severalFilesAreAddedAtOnce();
    void gapAndFlips();
    void repeatCountFollowsSilently();
    void unusableFilesShowBlack();
    void otherLedsOtherHeight();

private:
    // A file, red in the left half and black in the right.
    QString file(const QString &name, const QSize &size = QSize(200, 100)) const;
    QRgb previewed(int column, int row) const { return ui->GLWidget->pixelAt(column, row); }
    QImage picture() const { return window->picturePixmap.toImage(); }
    QString message() const { return window->statusBar()->currentMessage(); }
};

QString TestPictureTab::file(const QString &name, const QSize &size) const
{
    const QImage image =
        painted(size.width(), size.height(), [&](int x, int) { return x < (size.width() + 1) / 2 ? red : black; });
    QString path = env->path(name);
    image.save(path);
    return path;
}

void TestPictureTab::oneFileIsLoadedAndNotAdded()
{
    const QString path = file(QStringLiteral("a.png"));
    window->picPath.clear();
    DialogDriver driver;
    driver.answerFile({path});
    QVERIFY(!ui->PicView->isEnabled() && !ui->Add_Button->isEnabled());
    window->on_Pic_Loads_clicked();
    QCOMPARE(driver.files().first().title, QStringLiteral("讀圖(可複選)"));
    QCOMPARE(driver.files().first().directory, QDir::homePath() + QStringLiteral("/Pictures"));
    QCOMPARE(driver.files().first().filters,
             QStringList({QStringLiteral("Support files(*.jpg *.bmp *.png *.gif)"), QStringLiteral("All files(*.*)")}));
    QVERIFY(window->currentTimeline->items.isEmpty());
    QCOMPARE(ui->PicDir->text(), path);
    QCOMPARE(window->picPath, path);
    QVERIFY(ui->PicView->isEnabled() && ui->PicDir->isEnabled() && ui->Add_Button->isEnabled());
    QCOMPARE(window->patternWidth, 140);
    QCOMPARE(window->pictureWidth, 140);
    QCOMPARE(window->picturePixmap.size(), QSize(400, 200));
    // 5 s at speed 10 and a rate above 1500: 5 * 10 * 1500 / (140 * 10), rounded.
    QCOMPARE(ui->suggest->value(), 54);
    QCOMPARE(ui->Mode_loop->value(), 54);
    // 5000 ms in 54 repetitions: 92.6 columns, 93 and so 92.
    QCOMPARE(ui->GLWidget->columnCount, 92);
    QCOMPARE(previewed(20, 35), red);
    QCOMPARE(previewed(70, 35), black);
    const QList<QGraphicsItem *> items = ui->PicView->scene()->items();
    QCOMPARE(items.size(), 1);
    QCOMPARE(qgraphicsitem_cast<QGraphicsPixmapItem *>(items.first())->pixmap().toImage(), picture());
    // A cancelled choice and a file that does not exist leave all as it was. The store stays one picture behind.
    const qint64 shown = window->picturePixmap.cacheKey();
    driver.answerFile({});
    window->on_Pic_Loads_clicked();
    QVERIFY(driver.done());
    window->picload(env->path(QStringLiteral("none.png")));
    QCOMPARE(window->picturePixmap.cacheKey(), shown);
    QCOMPARE(window->picPath, path);
    QCOMPARE(ui->PicDir->text(), path);
    QCOMPARE(env->value(QStringLiteral("main/currentpicpath")).toString(),
             QDir::homePath() + QStringLiteral("/Pictures"));
    window->picload(file(QStringLiteral("b.png")));
    QCOMPARE(env->value(QStringLiteral("main/currentpicpath")).toString(), path);
}

void TestPictureTab::severalFilesAreAddedAtOnce()
{
    const QStringList files{file(QStringLiteral("a.png")), file(QStringLiteral("b.png")),
                            file(QStringLiteral("c.png"))};
    DialogDriver driver;
    driver.answerFile(files);
    QStringList messages;
    connect(window->statusBar(), &QStatusBar::messageChanged, this,
            [&messages](const QString &text) { messages << text; });
    window->on_Pic_Loads_clicked();
    QVERIFY(driver.done());
    const QList<TimelineItem *> &items = window->currentTimeline->items;
    QCOMPARE(items.size(), 3);
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(items.at(i)->startTime, QTime(0, 0).addSecs(5 * i));
        QCOMPARE(items.at(i)->patternKind, qint32(glow::PicturePattern));
        QVERIFY(items.at(i)->settingsText.contains(files.at(i)));
        QCOMPARE(items.at(i)->thumbnail.size(), QSize(170, 85));
    }
    QCOMPARE(ui->PicDir->text(), files.last());
    QVERIFY(ui->Add_Button->isEnabled());
    QVERIFY(messages.contains(QStringLiteral("圖片讀取1/3")) && messages.contains(QStringLiteral("圖片讀取3/3")));
    QCOMPARE(messages.last(), QStringLiteral("圖片讀取完成!!"));
}

void TestPictureTab::gapAndFlips()
{
    // 2 x 1 in shape: 140 columns.
    window->picload(file(QStringLiteral("a.png")));
    const QImage whole = picture();
    ui->Pic_Slide->setValue(50);
    QCOMPARE(window->patternWidth, 210);
    QCOMPARE(window->pictureWidth, 140);
    QCOMPARE(ui->suggest->value(), 36); // 75000 / 2100 is 35.7
    QCOMPARE(window->picturePixmap.size(), QSize(600, 200));
    ui->Pic_Slide->setValue(100);
    QCOMPARE(window->picturePixmap.size(), QSize(800, 200));
    QCOMPARE(picture().copy(0, 0, 400, 200), whole);
    QCOMPARE(ui->GLWidget->patternImage.pixel(ui->GLWidget->columnCount * 9 / 10, 3), black);
    // Read anew, the picture has its gap and the width is that of the picture alone.
    window->picload(window->picPath);
    QCOMPARE(window->picturePixmap.size(), QSize(800, 200));
    QCOMPARE(window->patternWidth, 140);
    ui->Pic_Slide->setValue(0);
    QCOMPARE(picture(), whole);
    QCOMPARE(window->patternWidth, 140);
    QCOMPARE(ui->PicView->findChildren<QGraphicsScene *>().size(), 1);
    ui->Pic_revH->click();
    QCOMPARE(picture().pixel(20, 100), black);
    QCOMPARE(picture().pixel(380, 100), red);
    const qint64 key = window->picturePixmap.cacheKey();
    ui->Pic_revV->click();
    QVERIFY(window->picturePixmap.cacheKey() != key);
}

void TestPictureTab::repeatCountFollowsSilently()
{
    // The preview is not fed a second time by the count that changes with the picture.
    window->picload(file(QStringLiteral("a.png")));
    const QSignalSpy suggested(ui->suggest, qOverload<int>(&QSpinBox::valueChanged));
    const QSignalSpy counted(ui->Mode_loop, qOverload<int>(&QSpinBox::valueChanged));
    window->picload(file(QStringLiteral("wide.png"), QSize(1000, 100)));
    QCOMPARE(suggested.count(), 1);
    QCOMPARE(counted.count(), 0);
    QCOMPARE(ui->Mode_loop->value(), 11); // 75000 / 7000 is 10.7
    ui->Mode_loop->setValue(12);
    QCOMPARE(counted.count(), 1); // unblocked again
}

void TestPictureTab::unusableFilesShowBlack()
{
    window->picload(file(QStringLiteral("a.png")));
    const QString broken = env->path(QStringLiteral("broken.png"));
    QVERIFY(put(broken, "no picture"));
    window->statusBar()->clearMessage();
    window->picload(broken);
    QCOMPARE(message(), QString());
    QVERIFY(window->picturePixmap.isNull());
    QCOMPARE(window->patternWidth, 0);
    QCOMPARE(previewed(10, 10), black);
    ui->Pic_Slide->setValue(40);
    QCOMPARE(window->patternWidth, 0);
    window->on_Add_Button_clicked();
    QVERIFY(window->currentTimeline->items.isEmpty());

    window->picload(file(QStringLiteral("flat.png"), QSize(20000, 3)));
    QVERIFY(window->picturePixmap.isNull());
    QVERIFY(message().contains(QStringLiteral("flat.png")));

    // A thread is a picture like any other.
    ui->Pic_Slide->setValue(100);
    window->picload(file(QStringLiteral("thread.png"), QSize(3, 20000)));
    QCOMPARE(window->patternWidth, 1);
    QCOMPARE(window->picturePixmap.height(), 200);
    window->on_Add_Button_clicked();
    QCOMPARE(window->currentTimeline->items.size(), 1);
    QVERIFY(!window->currentTimeline->items.first()->thumbnail.isNull());
}

void TestPictureTab::otherLedsOtherHeight()
{
    window->picload(file(QStringLiteral("a.png")));
    for (const int leds : {36, 0, 999}) {
        ui->Leds->setValue(leds);
        QCOMPARE(window->patternWidth, 2 * leds);
        QCOMPARE(window->picturePixmap.isNull(), leds == 0);
        QVERIFY(leds == 0 || ui->GLWidget->patternImage.height() == leds);
        ui->Pic_Slide->setValue(leds); // any other value: no crash without a picture
        ui->Pic_Slide->setValue(0);
    }
}

QTEST_MAIN(TestPictureTab)
#include "test_picturetab.moc"
