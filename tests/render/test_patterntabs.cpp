// The tabs of the pattern sources on the real window: picture files, texts, effects and colours; the two colours that
// they share, random effects.
#include "preview/mygl.h"
#include "render/textimage.h"
#include "show/draw/effectimage.h"
#include "show/draw/randomdraw.h"
#include "show/model/propvalues.h"
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

class TestPatternTabs : public WindowTest
{
    Q_OBJECT

private slots:
    void oneFileIsLoadedAndSeveralAreAdded()
    {
        const QString path = file("a.png");
        window->picPath.clear();
        DialogDriver driver;
        driver.answerFile({path});
        QVERIFY(!ui->PicView->isEnabled() && !ui->Add_Button->isEnabled());
        window->on_Pic_Loads_clicked();
        QCOMPARE(driver.files().first().directory, QDir::homePath() + "/Pictures");
        QVERIFY(window->currentTimeline->items.isEmpty());
        QVERIFY(ui->PicView->isEnabled() && ui->PicDir->isEnabled() && ui->Add_Button->isEnabled());
        // 5 s at speed 10 and a rate above 1500: 5 * 10 * 1500 / (140 * 10), rounded.
        QCOMPARE(window->patternWidth, 140);
        QCOMPARE(ui->Mode_loop->value(), 54);
        // 5000 ms in 54 repetitions: 92.6 columns, 93 and so 92.
        QCOMPARE(ui->GLWidget->columnCount, 92);
        QCOMPARE(ui->GLWidget->pixelAt(20, 35), red);
        QCOMPARE(ui->GLWidget->pixelAt(70, 50), blue);
        QCOMPARE(inView(ui->PicView), picture());
        // A cancelled choice and a file that does not exist leave all as it was. The store stays one picture behind.
        driver.answerFile({});
        window->on_Pic_Loads_clicked();
        window->picload(env->path("none.png"));
        QCOMPARE(window->picPath, path);
        QVERIFY(!window->picturePixmap.isNull());

        const QStringList files{file("b.png"), file("c.png")};
        const QSignalSpy messages(ui->statusBar, &QStatusBar::messageChanged);
        driver.answerFile(files);
        window->on_Pic_Loads_clicked();
        QVERIFY(driver.done());
        const QList<TimelineItem *> &items = window->currentTimeline->items;
        QCOMPARE(items.size(), 2);
        for (int i = 0; i < 2; ++i) {
            QCOMPARE(items.at(i)->startTime, QTime(0, 0).addSecs(5 * i));
            QVERIFY(items.at(i)->settingsText.contains(files.at(i)));
            QCOMPARE(items.at(i)->thumbnail.size(), QSize(170, 85));
        }
        QVERIFY(messages.contains({"圖片讀取2/2"}));
        QCOMPARE(messages.last(), QVariantList{"圖片讀取完成!!"});
        QCOMPARE(env->value("main/currentpicpath").toString(), files.first());
    }

    void gapAndFlips()
    {
        // 2 x 1 in shape: 140 columns.
        window->picload(file("a.png"));
        const QImage whole = picture();
        ui->Pic_Slide->setValue(50);
        QCOMPARE(window->patternWidth, 210);
        QCOMPARE(ui->suggest->value(), 36); // 75000 / 2100 is 35.7
        ui->Pic_Slide->setValue(100);
        // Read anew, the picture has its gap and the width is that of the picture alone.
        window->picload(window->picPath);
        QCOMPARE(picture().size(), QSize(800, 200));
        QCOMPARE(window->patternWidth, 140);
        ui->Pic_Slide->setValue(0);
        QCOMPARE(picture(), whole);
        QCOMPARE(ui->PicView->findChildren<QGraphicsScene *>().size(), 1);
        ui->Pic_revH->click();
        QCOMPARE(picture().pixel(20, 50), black);
        ui->Pic_revV->click();
        QCOMPARE(picture().pixel(20, 50), blue);

        // The preview is not fed a second time by the count that changes with the picture.
        const QSignalSpy counted(ui->Mode_loop, qOverload<int>(&QSpinBox::valueChanged));
        window->picload(file("wide.png", QSize(1000, 100)));
        QCOMPARE(ui->Mode_loop->value(), 11); // 75000 / 7000 is 10.7
        QCOMPARE(counted.count(), 0);
        ui->Mode_loop->setValue(12);
        QCOMPARE(counted.count(), 1); // unblocked again
        for (const int leds : {36, 0, 999}) {
            ui->Leds->setValue(leds);
            QCOMPARE(window->patternWidth, 10 * leds);
            QCOMPARE(window->picturePixmap.isNull(), leds == 0);
            ui->Pic_Slide->setValue(leds); // any other value: no crash without a picture
            ui->Pic_Slide->setValue(0);
        }
    }

    void unusableFilesShowBlack()
    {
        window->picload(file("a.png"));
        QVERIFY(put(env->path("broken.png"), "no picture"));
        for (const QString &path : {env->path("broken.png"), file("flat.png", QSize(20000, 3))}) {
            window->picload(path);
            QVERIFY(window->picturePixmap.isNull());
            QCOMPARE(ui->GLWidget->pixelAt(10, 10), black);
            window->on_Add_Button_clicked();
            QVERIFY(window->currentTimeline->items.isEmpty());
        }
        QVERIFY(window->statusBar()->currentMessage().contains("flat.png"));
        // A thread is a picture like any other.
        window->picload(file("thread.png", QSize(3, 20000)));
        QCOMPARE(window->patternWidth, 1);
        window->on_Add_Button_clicked();
        QVERIFY(!window->currentTimeline->items.value(0)->thumbnail.isNull());
    }

    void theTwoColours_data()
    {
        QTest::addColumn<int>("tab");
        QTest::newRow("text") << int(glow::TextPattern);
        QTest::newRow("effect") << int(glow::EffectPattern);
    }

    void theTwoColours()
    {
        QFETCH(int, tab);
        const bool isText = tab == glow::TextPattern;
        ui->Spe_comboBox->setCurrentIndex(glow::JumpEffect);
        ui->Mode_Pic->setCurrentIndex(tab);
        // What both tabs have alike.
        const auto number = [&](const char *channel) {
            return window->findChild<QSpinBox *>(QString(isText ? "text_%1num" : "Spe_%1num").arg(channel));
        };
        const auto slide = [&](const char *channel) {
            return window->findChild<QSlider *>(QString(isText ? "text_%1slide" : "Spe_%1slide").arg(channel));
        };
        const auto numbers = [&] { return QColor(number("r")->value(), number("g")->value(), number("b")->value()); };
        QRadioButton *front = isText ? ui->text_fcolor : ui->Spe_front;
        QRadioButton *back = isText ? ui->text_bcolor : ui->Spe_back;
        QPushButton *dialog = isText ? ui->Color_dialog : ui->Color_dialog_2;
        QPushButton *swap = isText ? ui->Color_Exc : ui->Color_Exc2;
        // The front colour and the back colour; the latter also as the result shows it, a text's last pixel or the last
        // third of the jump.
        const auto areColours = [&](const QColor &fore, const QColor &ground) {
            const QImage image = isText ? made().mirrored(true, true) : made();
            return window->foreColor == fore && window->backColor == ground && image.pixelColor(0, 0) == ground;
        };

        // Numbers and slides edit the chosen colour.
        number("r")->setValue(10);
        slide("g")->setValue(20);
        number("b")->setValue(30);
        QCOMPARE(QColor(slide("r")->value(), number("g")->value(), slide("b")->value()), QColor(10, 20, 30));
        QVERIFY(areColours(QColor(10, 20, 30), QColor(0, 0, 0)));
        window->backColor = QColor(4, 5, 6);
        back->click();
        QCOMPARE(numbers(), QColor(4, 5, 6));
        slide("r")->setValue(200);
        number("g")->setValue(100);
        slide("b")->setValue(50);
        QVERIFY(areColours(QColor(10, 20, 30), QColor(200, 100, 50)));

        // The dialog changes it and leaves the numbers. A cancelled one changes nothing.
        DialogDriver driver;
        for (const QColor &answer : {QColor(60, 70, 80), QColor()}) {
            driver.answerColor(answer);
            dialog->click();
            QVERIFY(areColours(QColor(10, 20, 30), QColor(60, 70, 80)));
            QCOMPARE(numbers(), QColor(200, 100, 50));
        }
        front->click();
        driver.answerColor(QColor(9, 8, 7));
        dialog->click();
        QCOMPARE(numbers(), QColor(10, 20, 30));
        QVERIFY(driver.done());

        // Swapping chooses the other one as well, so that the numbers are those of the same colour.
        swap->click();
        QVERIFY(back->isChecked() && areColours(QColor(60, 70, 80), QColor(9, 8, 7)));
        swap->click();
        QVERIFY(front->isChecked() && areColours(QColor(9, 8, 7), QColor(60, 70, 80)));
        QCOMPARE(numbers(), QColor(9, 8, 7));
    }

    void everyControlRenders()
    {
        const std::pair<int, std::function<void()>> controls[] = {
            {glow::TextPattern, [this] { ui->text_Edit->setText("HF"); }},
            {glow::TextPattern, [this] { ui->Text_slide->setValue(10); }},
            {glow::TextPattern, [this] { ui->Font_size->setCurrentIndex(4); }},
            {glow::TextPattern, [this] { ui->Text_revH->click(); }},
            {glow::TextPattern, [this] { ui->Text_revV->click(); }},
            {glow::TextPattern, [this] { ui->Leds->setValue(36); }},
            {glow::EffectPattern, [this] { ui->Spe_comboBox->setCurrentIndex(glow::MeteorEffect); }},
            {glow::EffectPattern, [this] { ui->Spe_width->setValue(9); }},
            {glow::EffectPattern, [this] { ui->Spe_color3->click(); }},
            {glow::EffectPattern, [this] { ui->Spe_revV->click(); }},
            {glow::EffectPattern, [this] { ui->Spe_revH->click(); }},
            {glow::EffectPattern, [this] { ui->Leds->setValue(48); }},
            // Pointing at a row of the open list selects it.
            {glow::EffectPattern, [this] { emit ui->Spe_comboBox->highlighted(glow::CrossEffect); }},
        };
        for (const auto &[tab, control] : controls) {
            ui->Mode_Pic->setCurrentIndex(tab);
            const QImage before = made();
            const int leds = ledCount;
            control();
            QCOMPARE(made(), asked());
            QVERIFY(made() != before || ledCount != leds);
            // The preview plays it: one column a millisecond, one row an LED. The width is that at as many rows.
            const MyGL &preview = *ui->GLWidget;
            QCOMPARE(preview.patternImage, made().scaled(preview.columnCount, ledCount));
            QCOMPARE(inView(tab == glow::TextPattern ? ui->text_View : ui->Spe_show),
                     tab == glow::TextPattern ? made().scaledToHeight(120, Qt::SmoothTransformation) : made());
            QCOMPARE(window->patternWidth, qRound(double(made().width()) * ledCount / made().height()));
            QCOMPARE(ui->suggest->value(), window->suggestRepeat());
        }
        QCOMPARE(ui->Spe_comboBox->currentIndex(), int(glow::CrossEffect));
    }

    void textsAsTyped()
    {
        ui->Mode_Pic->setCurrentIndex(glow::TextPattern);
        // The font of a fresh window draws the default text whole: nothing of it reaches the lower edge.
        const QImage text = made();
        const QImage lowest = text.copy(0, text.height() - 1, text.width(), 1);
        QCOMPARE(lowest, painted(lowest.width(), 1, [](int, int) { return black; }));
        const qint64 before = window->textPixmap.cacheKey();
        ui->fontComboBox->setCurrentIndex(ui->fontComboBox->currentIndex() == 0 ? 1 : 0);
        QVERIFY(window->textPixmap.cacheKey() != before);
        // The separators of the settings text are replaced.
        ui->text_Edit->setText("HF");
        ui->text_Edit->setCursorPosition(1);
        QTest::keyClicks(ui->text_Edit, "|?");
        QCOMPARE(ui->text_Edit->text(), QString("H│？F"));
        QCOMPARE(ui->text_Edit->cursorPosition(), 3);
        // A text beyond all bounds says so and is still a pattern.
        ui->text_Edit->setText(QString(2000, QLatin1Char('W')));
        QVERIFY(!window->statusBar()->currentMessage().isEmpty());
        window->on_Add_Button_clicked();
        QVERIFY(!window->currentTimeline->items.value(0)->thumbnail.isNull());
    }

    void randomDrawsInOrder()
    {
        ui->Mode_Pic->setCurrentIndex(glow::EffectPattern);
        for (const int seed : {1, 2024, 86399999}) {
            glow::seedRandomDraws(seed);
            QVector<int> draws;
            for (int i = 0; i < 12; ++i) {
                draws << glow::randomDraw();
            }
            ui->Spe_back->click();
            glow::seedRandomDraws(seed);
            ui->Spe_randon->click();
            QCOMPARE(ui->Spe_width->value(), draws.at(0) % 10 + 1);
            QCOMPARE(int(ui->Spe_color3->checkState()), draws.at(1) % 3);
            QVERIFY(ui->Spe_front->isChecked());
            QCOMPARE(ui->Spe_revH->isChecked(), draws.at(2) % 2 != 0);
            QCOMPARE(ui->Spe_revV->isChecked(), draws.at(3) % 2 != 0);
            QCOMPARE(window->backColor, QColor(draws.at(6) % 256, draws.at(5) % 256, draws.at(4) % 256));
            QCOMPARE(window->foreColor, QColor(draws.at(7) % 256, draws.at(8) % 256, draws.at(9) % 256));
            QCOMPARE(ui->Spe_comboBox->currentIndex(), draws.at(10) % 14);
            QCOMPARE(ui->Speed_slide->value(), draws.at(11) % 17 + 2);
            QCOMPARE(made(), asked());
        }
    }

    void colourTab()
    {
        ui->Mode_Pic->setCurrentIndex(glow::ColourPattern);
        ui->Color_R->setValue(120);
        QCOMPARE(ui->R_slide->value(), 120);
        ui->G_slide->setValue(7);
        QCOMPARE(ui->Color_G->value(), 7);
        ui->Color_B->setValue(0);
        QCOMPARE(window->foreColor, QColor(120, 7, 0));
        QCOMPARE(ui->Color_View->styleSheet(), QString("background-color: rgb(120,7,0);"));
        QCOMPARE(QColor(ui->GLWidget->pixelAt(5, 5)), QColor(120, 7, 0));

        // A cancelled choice leaves all. The same colour again leaves the form that the dialog's slot writes.
        DialogDriver driver;
        for (const QColor &answer : {QColor(10, 255, 30), QColor(), QColor(10, 255, 30)}) {
            driver.answerColor(answer);
            ui->Color_View->click();
            QCOMPARE(QColor(ui->GLWidget->pixelAt(0, 0)), QColor(10, 255, 30));
        }
        QCOMPARE(window->foreColor, QColor(10, 255, 30));
        QCOMPARE(ui->Color_View->styleSheet(),
                 QString("background-color: rgb(10, 255, 30);color: rgb(255, 255, 255);"));
        QVERIFY(driver.done());
    }

private:
    // A file, red in the left half, black above blue in the right.
    QString file(const QString &name, const QSize &size = QSize(200, 100)) const
    {
        QString path = env->path(name);
        const auto colour = [&](int x, int y) {
            return x < (size.width() + 1) / 2 ? red : y < size.height() / 2 ? black : blue;
        };
        painted(size.width(), size.height(), colour).save(path);
        return path;
    }
    // The one picture that a view shows.
    static QImage inView(const QGraphicsView *view)
    {
        const QList<QGraphicsItem *> items = view->scene()->items();
        return items.size() == 1 ? qgraphicsitem_cast<QGraphicsPixmapItem *>(items.first())->pixmap().toImage()
                                 : QImage();
    }
    // The text or effect that the controls ask for at present, and the one that there is.
    QImage asked() const
    {
        if (ui->Mode_Pic->currentIndex() == glow::TextPattern) {
            return glow::renderText({ui->text_Edit->text(), ui->fontComboBox->currentText(), window->foreColor,
                                     window->backColor, ui->Font_size->currentIndex(), ui->Text_slide->value(),
                                     ui->Text_revH->isChecked(), ui->Text_revV->isChecked()})
                .image;
        }
        return glow::effectImage({ui->Spe_comboBox->currentIndex(), window->foreColor, window->backColor,
                                  ui->Spe_width->value(), ui->Spe_color3->checkState(), ui->Spe_revH->isChecked(),
                                  ui->Spe_revV->isChecked()});
    }
    QImage made() const
    {
        const bool isText = ui->Mode_Pic->currentIndex() == glow::TextPattern;
        return (isText ? window->textPixmap : window->effectPixmap).toImage().convertToFormat(QImage::Format_RGB32);
    }
    QImage picture() const { return window->picturePixmap.toImage(); }
};

QTEST_MAIN(TestPatternTabs)
#include "test_patterntabs.moc"
