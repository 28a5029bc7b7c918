// The text, effect and colour tabs of the real window: their controls, the two colours that they share, random effects.
#include "app/propvalues.h"
#include "preview/mygl.h"
#include "render/effectimage.h"
#include "render/randomdraw.h"
#include "support/dialogdriver.h"
#include "support/windowtest.h"
#include "timeline/timeline.h"
#include "timeline/timelineitem.h"
#include "ui_mainwindow.h"

#include <QGraphicsPixmapItem>
#include <QGraphicsScene>
#include <QtTest>

namespace {

// Counts the pictures that a view is given.
class SceneCount : public QObject
{
public:
    explicit SceneCount(QGraphicsView *view) { view->installEventFilter(this); }
    int scenes = 0;

protected:
    bool eventFilter(QObject * /*watched*/, QEvent *event) override
    {
        scenes += event->type() == QEvent::ChildAdded ? 1 : 0;
        return false;
    }
};

// What the text tab and the effect tab have alike.
struct ColourPanel
{
    QSpinBox *red, *green, *blue;
    QSlider *redSlide, *greenSlide, *blueSlide;
    QRadioButton *front, *back;
    QPushButton *dialog, *swap;
    QGraphicsView *view;

    QColor numbers() const { return {red->value(), green->value(), blue->value()}; }
};

} // namespace

class TestPatternTabs : public WindowTest
{
    Q_OBJECT

private slots:
    void init();
    void theTwoColours_data();
    void theTwoColours();
    void separatorsAreReplaced();
    void everyTextControlRenders();
    void everyEffectControlDraws();
    void randomDrawsInOrder();
    void colourTab();

private:
    ColourPanel panelOfRow();
    // The back colour as the result shows it: a text's last pixel, the last third of the jump.
    QColor ground() const
    {
        const QImage image = ui->Mode_Pic->currentIndex() == glow::TextPattern
                                 ? window->textPixmap.toImage().mirrored(true, true)
                                 : window->effectPixmap.toImage();
        return image.pixelColor(0, 0);
    }
    // The effect that the controls ask for at present, and the one that there is.
    QImage asked() const
    {
        return glow::effectImage({ui->Spe_comboBox->currentIndex(), window->foreColor, window->backColor,
                                  ui->Spe_width->value(), ui->Spe_color3->checkState(), ui->Spe_revH->isChecked(),
                                  ui->Spe_revV->isChecked()});
    }
    QImage made() const { return window->effectPixmap.toImage().convertToFormat(asked().format()); }
    QImage text() const { return window->textPixmap.toImage(); }
};

void TestPatternTabs::init()
{
    WindowTest::init();
    ui->Mode_Pic->setCurrentIndex(glow::TextPattern);
}

void TestPatternTabs::theTwoColours_data()
{
    QTest::addColumn<int>("tab");
    QTest::newRow("text") << int(glow::TextPattern);
    QTest::newRow("effect") << int(glow::EffectPattern);
}

ColourPanel TestPatternTabs::panelOfRow()
{
    ui->Spe_comboBox->setCurrentIndex(glow::JumpEffect);
    QFETCH(int, tab);
    ui->Mode_Pic->setCurrentIndex(tab);
    if (tab == glow::TextPattern) {
        return {ui->text_rnum,   ui->text_gnum,   ui->text_bnum,    ui->text_rslide, ui->text_gslide, ui->text_bslide,
                ui->text_fcolor, ui->text_bcolor, ui->Color_dialog, ui->Color_Exc,   ui->text_View};
    }
    return {ui->Spe_rnum,  ui->Spe_gnum, ui->Spe_bnum,       ui->Spe_rslide, ui->Spe_gslide, ui->Spe_bslide,
            ui->Spe_front, ui->Spe_back, ui->Color_dialog_2, ui->Color_Exc2, ui->Spe_show};
}

void TestPatternTabs::theTwoColours()
{
    const ColourPanel panel = panelOfRow();
    const auto colours = [this] { return qMakePair(window->foreColor, window->backColor); };
    // Numbers and slides edit the chosen colour.
    panel.red->setValue(10);
    panel.greenSlide->setValue(20);
    panel.blue->setValue(30);
    QCOMPARE(QColor(panel.redSlide->value(), panel.green->value(), panel.blueSlide->value()), QColor(10, 20, 30));
    QCOMPARE(colours(), qMakePair(QColor(10, 20, 30), QColor(0, 0, 0)));
    window->backColor = QColor(4, 5, 6);
    panel.back->click();
    QCOMPARE(panel.numbers(), QColor(4, 5, 6));
    QCOMPARE(ground(), QColor(4, 5, 6));
    panel.redSlide->setValue(200);
    panel.green->setValue(100);
    panel.blueSlide->setValue(50);
    QCOMPARE(colours(), qMakePair(QColor(10, 20, 30), QColor(200, 100, 50)));
    QCOMPARE(ground(), QColor(200, 100, 50));
    panel.front->click();
    QCOMPARE(panel.numbers(), QColor(10, 20, 30));

    // The dialog changes it and leaves the numbers. A cancelled one renders as well.
    DialogDriver driver;
    driver.answerColor(QColor(9, 8, 7));
    panel.dialog->click();
    QCOMPARE(panel.numbers(), QColor(10, 20, 30));
    panel.back->click();
    driver.answerColor(QColor(60, 70, 80));
    panel.dialog->click();
    QCOMPARE(colours(), qMakePair(QColor(9, 8, 7), QColor(60, 70, 80)));
    QCOMPARE(ground(), QColor(60, 70, 80));
    const SceneCount count(panel.view);
    driver.answerColor(QColor());
    panel.dialog->click();
    QCOMPARE(colours(), qMakePair(QColor(9, 8, 7), QColor(60, 70, 80)));
    QCOMPARE(count.scenes, 1);
    QVERIFY(driver.done());

    // Swapping leaves the numbers too and chooses the other one.
    panel.front->click();
    QCOMPARE(panel.numbers(), QColor(9, 8, 7));
    panel.swap->click();
    QVERIFY(panel.back->isChecked());
    QCOMPARE(colours(), qMakePair(QColor(60, 70, 80), QColor(9, 8, 7)));
    QCOMPARE(panel.numbers(), QColor(9, 8, 7));
    QCOMPARE(ground(), QColor(9, 8, 7));
    panel.swap->click();
    QVERIFY(panel.front->isChecked());
    QCOMPARE(panel.numbers(), QColor(9, 8, 7));
    QCOMPARE(ground(), QColor(60, 70, 80));
}

void TestPatternTabs::separatorsAreReplaced()
{
    ui->text_Edit->setText(QStringLiteral("ab"));
    ui->text_Edit->setCursorPosition(1);
    const SceneCount count(ui->text_View);
    QTest::keyClicks(ui->text_Edit, QStringLiteral("|?"));
    QCOMPARE(ui->text_Edit->text(), QStringLiteral("a│？b"));
    QCOMPARE(ui->text_Edit->cursorPosition(), 3);
    QCOMPARE(count.scenes, 2); // one a keystroke
    QCOMPARE(ui->text_View->findChildren<QGraphicsScene *>().size(), 1);
}

void TestPatternTabs::everyTextControlRenders()
{
    // As it stands at construction. The width is the one that the picture has at 70 rows, rounded.
    const QPixmap first = window->textPixmap;
    QVERIFY(first.height() > 200);
    QCOMPARE(window->patternWidth, qRound(first.width() * 70.0 / first.height()));
    const QList<QGraphicsItem *> items = ui->text_View->scene()->items();
    QCOMPARE(items.size(), 1);
    QCOMPARE(qgraphicsitem_cast<QGraphicsPixmapItem *>(items.first())->pixmap().height(), 120);
    QVERIFY(ui->Add_Button->isEnabled() && !ui->suggest->isEnabled());
    QCOMPARE(ui->suggest->value(), window->suggestRepeat());

    ui->text_Edit->setText(QStringLiteral("HF"));
    const QImage plain = text();
    const int width = window->patternWidth;
    ui->Text_slide->setValue(10);
    QCOMPARE(text().width(), 2 * (plain.width() - 50) + 50);
    QVERIFY(window->patternWidth > width * 3 / 2);
    ui->Text_slide->setValue(5);
    ui->Font_size->setCurrentIndex(4);
    QCOMPARE(text().height(), plain.height() * 2);
    ui->Font_size->setCurrentIndex(9);
    ui->Text_revH->setChecked(true);
    QCOMPARE(text(), plain.mirrored(true, false));
    ui->Text_revV->click();
    QCOMPARE(text(), plain.mirrored(true, true));
    const SceneCount count(ui->text_View);
    ui->fontComboBox->setCurrentIndex(ui->fontComboBox->currentIndex() == 0 ? 1 : 0);
    QVERIFY(count.scenes >= 1);
    ui->Leds->setValue(36);
    QCOMPARE(ui->GLWidget->patternImage.height(), 36);
    ui->Font_size->setCurrentIndex(-1); // no row: as the first
    QVERIFY(!text().isNull());
    // A text beyond all bounds says so and is still a pattern.
    ui->Font_size->setCurrentIndex(9);
    window->statusBar()->clearMessage();
    ui->text_Edit->setText(QString(2000, QLatin1Char('W')));
    QVERIFY(!window->statusBar()->currentMessage().isEmpty());
    window->on_Add_Button_clicked();
    QVERIFY(!window->currentTimeline->items.value(0)->thumbnail.isNull());
}

void TestPatternTabs::everyEffectControlDraws()
{
    ui->Mode_Pic->setCurrentIndex(glow::EffectPattern);
    QCOMPARE(made(), asked());
    const std::function<void()> controls[] = {
        [this] { ui->Spe_comboBox->setCurrentIndex(glow::MeteorEffect); },
        [this] { ui->Spe_width->setValue(9); },
        [this] { ui->Spe_color3->click(); },
        [this] { ui->Spe_revV->click(); },
        [this] { ui->Spe_revH->click(); },
        [this] { ui->Spe_rnum->setValue(17); },
        // Pointing at a row of the open list selects it.
        [this] { emit ui->Spe_comboBox->highlighted(glow::CrossEffect); },
        [this] { ui->Leds->setValue(48); },
    };
    for (const auto &control : controls) {
        const QImage before = made();
        const int leds = ledCount;
        control();
        QCOMPARE(made(), asked());
        QVERIFY(made() != before || ledCount != leds);
        // The preview plays it: one column a millisecond, one row an LED.
        const MyGL &preview = *ui->GLWidget;
        QCOMPARE(
            preview.patternImage,
            window->effectPixmap.scaled(preview.columnCount, ledCount, Qt::IgnoreAspectRatio, Qt::FastTransformation)
                .toImage());
        const auto *shown = qgraphicsitem_cast<QGraphicsPixmapItem *>(ui->Spe_show->scene()->items().value(0));
        QVERIFY(shown != nullptr);
        QCOMPARE(shown->pixmap().toImage(), window->effectPixmap.toImage());
        QCOMPARE(ui->Spe_show->findChildren<QGraphicsScene *>().size(), 1);
        QCOMPARE(window->patternWidth, 2 * ledCount);
        QCOMPARE(ui->suggest->value(), window->suggestRepeat());
    }
    QCOMPARE(ui->Spe_comboBox->currentIndex(), int(glow::CrossEffect));
}

void TestPatternTabs::randomDrawsInOrder()
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

void TestPatternTabs::colourTab()
{
    ui->Mode_Pic->setCurrentIndex(glow::ColourPattern);
    QCOMPARE(ui->Color_R->value(), 255);
    window->backColor = QColor(1, 1, 1);
    ui->Color_R->setValue(120);
    QCOMPARE(ui->R_slide->value(), 120);
    ui->G_slide->setValue(7);
    QCOMPARE(ui->Color_G->value(), 7);
    ui->Color_B->setValue(0);
    QCOMPARE(window->foreColor, QColor(120, 7, 0));
    QCOMPARE(window->backColor, QColor(1, 1, 1));
    QCOMPARE(ui->Color_View->styleSheet(), QStringLiteral("background-color: rgb(120,7,0);"));
    QCOMPARE(QColor(ui->GLWidget->pixelAt(5, 5)), QColor(120, 7, 0));

    // The slots of two changed channels write the short form; the same colour again leaves the dialog's own.
    DialogDriver driver;
    for (const char *look :
         {"background-color: rgb(10,255,30);", "background-color: rgb(10, 255, 30);color: rgb(255, 255, 255);"}) {
        driver.answerColor(QColor(10, 255, 30));
        ui->Color_View->click();
        QCOMPARE(window->foreColor, QColor(10, 255, 30));
        QCOMPARE(ui->Color_B->value(), 30);
        QCOMPARE(ui->Color_View->styleSheet(), QLatin1String(look));
        QCOMPARE(QColor(ui->GLWidget->pixelAt(0, 0)), QColor(10, 255, 30));
    }
    driver.answerColor(QColor());
    ui->Color_View->click();
    QCOMPARE(window->foreColor, QColor(10, 255, 30));
    QVERIFY(driver.done());
}

QTEST_MAIN(TestPatternTabs)
#include "test_patterntabs.moc"
