// The tabs of the pattern sources on the real window: picture files, texts, effects and colours; the two colours that
// they share, random effects.
#include "preview/mygl.h"
#include "render/textimage.h"
#include "show/draw/effectimage.h"
#include "show/draw/randomdraw.h"
#include "show/model/propvalues.h"
#include "support/pixels.h"
#include "support/windowtest.h"

#include <QGraphicsPixmapItem>
#include <QSignalSpy>

class TestPatternTabs : public WindowTest
{
    Q_OBJECT

private slots:
    void oneFileIsLoadedAndSeveralAreAdded()
    {
        const QStringList files{file("a.png"), file("b.png"), file("c.png")};
        window->picPath.clear();
        DialogDriver driver;
        driver.answerFile({files[0]});
        QVERIFY(!ui->PicView->isEnabled() && !ui->Add_Button->isEnabled());
        ui->Pic_Loads->click();
        QCOMPARE(driver.files().first().directory, QDir::homePath() + "/Pictures");
        QVERIFY(ui->PicView->isEnabled() && ui->PicDir->isEnabled() && ui->Add_Button->isEnabled());
        // 5 s at speed 10 and a rate above 1500: 5 * 10 * 1500 / (140 * 10), rounded. 5000 ms in 54 repetitions
        // are 92.6 columns, 93 and so 92.
        QCOMPARE(window->patternWidth, 140);
        QCOMPARE(ui->Mode_loop->value(), 54);
        QCOMPARE(ui->GLWidget->columnCount, 92);
        QCOMPARE(ui->GLWidget->pixelAt(70, 50), blue);
        QCOMPARE(inView(ui->PicView), picture());
        // A cancelled choice and a file that does not exist leave all as it was. The store stays one picture behind.
        driver.answerFile({});
        driver.answerFile(files.mid(1));
        ui->Pic_Loads->click();
        window->picload(env->path("none.png"));
        QVERIFY(window->picPath == files[0] && !window->picturePixmap.isNull());
        const QSignalSpy messages(ui->statusBar, &QStatusBar::messageChanged);
        ui->Pic_Loads->click();
        QVERIFY(driver.done());
        const QList<TimelineItem *> &items = window->currentTimeline->items;
        QCOMPARE(items.size(), 2);
        QVERIFY(items[0]->settingsText.contains(files[1]) && items[1]->settingsText.contains(files[2]));
        QCOMPARE(items[1]->startTime, QTime(0, 0, 5));
        QVERIFY(messages.contains({"圖片讀取2/2"}) && messages.last() == QVariantList{"圖片讀取完成!!"});
        QCOMPARE(env->value("main/currentpicpath").toString(), files[1]);
    }

    void gapAndFlips()
    {
        // 2 x 1 in shape: 140 columns.
        window->picload(file("a.png"));
        const QImage whole = picture();
        ui->Pic_Slide->setValue(50);
        QVERIFY(window->patternWidth == 210 && ui->suggest->value() == 36); // 75000 / 2100 is 35.7
        ui->Pic_Slide->setValue(100);
        // Read anew, the picture has its gap and the width is that of the picture alone.
        window->picload(window->picPath);
        QVERIFY(picture().width() == 800 && window->patternWidth == 140);
        ui->Pic_Slide->setValue(0);
        QCOMPARE(picture(), whole);
        ui->Pic_revH->click();
        QCOMPARE(picture().pixel(20, 50), black);
        ui->Pic_revV->click();
        QCOMPARE(picture().pixel(20, 50), blue);

        // The preview is not fed a second time by the count that changes with the picture.
        const QSignalSpy counted(ui->Mode_loop, qOverload<int>(&QSpinBox::valueChanged));
        window->picload(file("wide.png", QSize(1000, 100)));
        QVERIFY(ui->Mode_loop->value() == 11 && counted.isEmpty()); // 75000 / 7000 is 10.7
        ui->Mode_loop->setValue(12);
        QCOMPARE(counted.count(), 1); // unblocked again
        for (const int leds : {36, 0}) {
            ui->Leds->setValue(leds);
            QVERIFY(window->patternWidth == 10 * leds && window->picturePixmap.isNull() == (leds == 0));
            ui->Pic_Slide->setValue(leds + 1);
        }
    }

    void unusableFilesShowBlack()
    {
        QVERIFY(put(env->path("broken.png"), "no picture"));
        for (const QString &path : {env->path("broken.png"), file("flat.png", QSize(20000, 3))}) {
            window->picload(file("a.png"));
            window->picload(path);
            window->on_Add_Button_clicked();
            QVERIFY(window->picturePixmap.isNull() && window->currentTimeline->items.isEmpty());
            QCOMPARE(ui->GLWidget->pixelAt(10, 10), black);
        }
        QVERIFY(window->statusBar()->currentMessage().contains("flat.png"));
        window->picload(file("a.png"));
        QVERIFY(window->statusBar()->currentMessage().isEmpty());
        DialogDriver driver;
        driver.answerFile({env->path("broken.png"), file("a.png")});
        ui->Pic_Loads->click();
        QCOMPARE(window->statusBar()->currentMessage(), QString("圖片讀取完成!! 無法使用的圖片：broken.png"));
        qDeleteAll(window->currentTimeline->items);
        window->currentTimeline->items.clear();
        // A text beyond all bounds says so and is still a pattern.
        ui->Mode_Pic->setCurrentIndex(glow::TextPattern);
        ui->text_Edit->setText(QString(2000, QLatin1Char('W')));
        QVERIFY(!window->statusBar()->currentMessage().isEmpty());
        window->on_Add_Button_clicked();
        QCOMPARE(window->currentTimeline->items.size(), 1);
    }

    void theTwoColours()
    {
        // What both tabs have alike: the beginning of names, the choice of front and back, the dialog, the swap.
        for (const QStringList &tab : {QStringList{"text_", "text_fcolor", "text_bcolor", "Color_dialog", "Color_Exc"},
                                       QStringList{"Spe_", "Spe_front", "Spe_back", "Color_dialog_2", "Color_Exc2"}}) {
            ui->Mode_Pic->setCurrentIndex(tab[0] == "text_" ? glow::TextPattern : glow::EffectPattern);
            const auto channel = [&](const char *name) { return control(tab[0] + name)->property("value").toInt(); };
            const auto look = [&](QRgb front, QRgb back, QRgb numbers) {
                return window->foreColor.rgb() == front && window->backColor.rgb() == back && made() == asked() &&
                       numbers == qRgb(channel("rnum"), channel("gnum"), channel("bnum")) &&
                       numbers == qRgb(channel("rslide"), channel("gslide"), channel("bslide"));
            };
            // Numbers and slides edit the chosen colour.
            set(tab[2]);
            set(tab[0] + "rnum", 0);
            set(tab[0] + "gslide", 0);
            set(tab[0] + "bnum", 255);
            set(tab[1]);
            set(tab[0] + "rslide", 0);
            set(tab[0] + "gnum", 255);
            set(tab[0] + "bslide", 0);
            QVERIFY(look(green, blue, green));
            // The dialog changes it and leaves the numbers. A cancelled one changes nothing.
            DialogDriver driver;
            for (const QColor &answer : {QColor(Qt::red), QColor()}) {
                driver.answerColor(answer);
                set(tab[3]);
                QVERIFY(look(red, blue, green));
            }
            set(tab[2]);
            driver.answerColor(Qt::white);
            set(tab[3]);
            QVERIFY(driver.done() && look(red, white, blue));
            // Swapping chooses the other one as well, so that the numbers are those of the same colour.
            set(tab[4]);
            QVERIFY(look(white, red, white));
            set(tab[4]);
            QVERIFY(look(red, white, white));
        }
    }

    void everyControlRenders()
    {
        // The font of a fresh window draws the default text whole: nothing of it reaches the lower edge.
        ui->Mode_Pic->setCurrentIndex(glow::TextPattern);
        const QImage lowest = made().copy(0, made().height() - 1, made().width(), 1);
        QCOMPARE(lowest, painted(lowest.width(), 1, [](int, int) { return black; }));
        const std::tuple<int, const char *, QVariant> controls[] = {
            {glow::TextPattern, "text_Edit", "HF"},
            {glow::TextPattern, "fontComboBox", ui->fontComboBox->currentIndex() == 0},
            {glow::TextPattern, "Text_slide", 10},
            {glow::TextPattern, "Font_size", 4},
            {glow::TextPattern, "Text_revH", {}},
            {glow::TextPattern, "Text_revV", {}},
            {glow::TextPattern, "Leds", 36},
            {glow::EffectPattern, "Spe_comboBox", glow::MeteorEffect},
            {glow::EffectPattern, "Spe_width", 9},
            {glow::EffectPattern, "Spe_color3", {}},
            {glow::EffectPattern, "Spe_revV", {}},
            {glow::EffectPattern, "Spe_revH", {}},
            {glow::EffectPattern, "Leds", 48},
        };
        for (const auto &[tab, name, value] : controls) {
            ui->Mode_Pic->setCurrentIndex(tab);
            const QImage before = made();
            const int leds = ledCount;
            set(name, value);
            QVERIFY2(made() == asked() && (made() != before || ledCount != leds), name);
            // The preview plays it: one column a millisecond, one row an LED. The width is that at as many rows.
            QCOMPARE(ui->GLWidget->patternImage, made().scaled(ui->GLWidget->columnCount, ledCount));
            QCOMPARE(window->patternWidth, qRound(double(made().width()) * ledCount / made().height()));
            QCOMPARE(ui->suggest->value(), window->suggestRepeat());
            QCOMPARE(inView(tab == glow::TextPattern ? ui->text_View : ui->Spe_show).scaledToHeight(120),
                     made().scaledToHeight(120, Qt::TransformationMode(tab == glow::TextPattern)));
        }
        emit ui->Spe_comboBox->highlighted(glow::CrossEffect); // pointing at a row of the open list selects it
        QVERIFY(ui->Spe_comboBox->currentIndex() == glow::CrossEffect && made() == asked());

        // The separators of the settings text are replaced as they are typed.
        ui->Mode_Pic->setCurrentIndex(glow::TextPattern);
        ui->text_Edit->setCursorPosition(1);
        QTest::keyClicks(ui->text_Edit, "|?");
        QCOMPARE(ui->text_Edit->text(), QString("H│？F"));
        QCOMPARE(ui->text_Edit->cursorPosition(), 3);
    }

    void randomDrawsInOrder()
    {
        ui->Mode_Pic->setCurrentIndex(glow::EffectPattern);
        ui->Spe_back->click();
        glow::seedRandomDraws(2024);
        QVector<int> draws;
        for (const int kinds : {10, 3, 2, 2, 256, 256, 256, 256, 256, 256, 14, 17})
            draws << glow::randomDraw() % kinds;
        glow::seedRandomDraws(2024);
        ui->Spe_randon->click();
        const QColor &front = window->foreColor;
        const QColor &back = window->backColor;
        QCOMPARE(draws, (QVector<int>{ui->Spe_width->value() - 1, ui->Spe_color3->checkState(),
                                      ui->Spe_revH->isChecked(), ui->Spe_revV->isChecked(), back.blue(), back.green(),
                                      back.red(), front.red(), front.green(), front.blue(),
                                      ui->Spe_comboBox->currentIndex(), ui->Speed_slide->value() - 2}));
        QVERIFY(ui->Spe_front->isChecked() && made() == asked());
    }

    void colourTab()
    {
        ui->Mode_Pic->setCurrentIndex(glow::ColourPattern);
        ui->Color_R->setValue(120);
        ui->G_slide->setValue(7);
        ui->Color_B->setValue(1);
        QCOMPARE(QColor(ui->R_slide->value(), ui->Color_G->value(), ui->B_slide->value()), QColor(120, 7, 1));
        QCOMPARE(QColor(ui->GLWidget->pixelAt(5, 5)), QColor(120, 7, 1));
        QCOMPARE(ui->Color_View->styleSheet(), QString("background-color: rgb(120,7,1);"));
        // A cancelled choice leaves all. The same colour again leaves the form that the dialog's slot writes.
        DialogDriver driver;
        for (const QColor &answer : {QColor(10, 255, 30), QColor(), QColor(10, 255, 30)}) {
            driver.answerColor(answer);
            ui->Color_View->click();
            QVERIFY(QColor(ui->GLWidget->pixelAt(0, 0)) == QColor(10, 255, 30) && window->foreColor.green() == 255);
        }
        QCOMPARE(ui->Color_View->styleSheet(),
                 QString("background-color: rgb(10, 255, 30);color: rgb(255, 255, 255);"));
    }

private:
    QWidget *control(const QString &name) const { return window->findChild<QWidget *>(name); }
    // Sets a control as a user does; a button is clicked.
    void set(const QString &name, const QVariant &value = {}) const
    {
        QWidget *widget = control(name);
        if (auto *button = qobject_cast<QAbstractButton *>(widget)) {
            button->click();
        } else {
            const bool isText = value.type() == QVariant::String;
            widget->setProperty(isText ? "text" : widget->inherits("QComboBox") ? "currentIndex" : "value", value);
        }
    }
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
