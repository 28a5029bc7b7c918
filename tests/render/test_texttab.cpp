// The text tab and the colour tab on the real window.
#include "app/mainwindow.h"
#include "app/propvalues.h"
#include "preview/mygl.h"
#include "support/dialogdriver.h"
#include "support/testenv.h"
#include "support/windowcheck.h"
#include "timeline/timeline.h"
#include "timeline/timelineitem.h"
#include "timeline/timescale.h"
#include "ui_mainwindow.h"

#include <QChildEvent>
#include <QGraphicsPixmapItem>
#include <QGraphicsScene>
#include <QSignalSpy>
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
        if (event->type() == QEvent::ChildAdded) {
            scenes += 1;
        }
        return false;
    }
};

} // namespace

class TestTextTab : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void renderedAtConstruction();
    void separatorsAreReplaced();
    void everyControlRenders();
    void numbersEditTheChosenColour();
    void switchingLoadsTheNumbers();
    void swappingColours();
    void colourDialogOfTheText();
    void tooLongTextsSaySo();
    void colourNumbersAndSliders();
    void colourDialogOfTheTab();

private:
    QScopedPointer<TestEnv> env;
    QScopedPointer<MainWindow> window;
    Ui::MainWindow *ui = nullptr;
};

void TestTextTab::init()
{
    env.reset(new TestEnv);
    msPerPixel = 10.0F;
    window.reset(new MainWindow);
    ui = window->ui;
    window->show();
    ui->Mode_Pic->setCurrentIndex(glow::TextPattern);
}

void TestTextTab::cleanup()
{
    QCOMPARE(whatIsWrong(*window), QString());
    window.reset();
    env.reset();
}

void TestTextTab::renderedAtConstruction()
{
    QCOMPARE(ui->text_Edit->text(), QStringLiteral("文字..."));
    const QPixmap text = window->textPixmap;
    QVERIFY(text.height() > 200);
    // The width that the picture has at 70 rows, rounded.
    QCOMPARE(window->patternWidth, qRound(text.width() * 70.0 / text.height()));
    const QList<QGraphicsItem *> items = ui->text_View->scene()->items();
    QCOMPARE(items.size(), 1);
    QCOMPARE(qgraphicsitem_cast<QGraphicsPixmapItem *>(items.first())->pixmap().height(), 120);
    QVERIFY(ui->Add_Button->isEnabled() && !ui->suggest->isEnabled());
    QCOMPARE(ui->suggest->value(), window->suggestRepeat());
    // White on black, the colours of a new window.
    const QImage image = text.toImage();
    QCOMPARE(image.pixel(image.width() - 1, 0), qRgb(0, 0, 0));
}

void TestTextTab::separatorsAreReplaced()
{
    ui->text_Edit->setText(QStringLiteral("ab"));
    ui->text_Edit->setCursorPosition(1);
    SceneCount count(ui->text_View);
    QTest::keyClicks(ui->text_Edit, QStringLiteral("|"));
    QCOMPARE(ui->text_Edit->text(), QStringLiteral("a│b"));
    QCOMPARE(ui->text_Edit->cursorPosition(), 2);
    QCOMPARE(count.scenes, 1);
    QTest::keyClicks(ui->text_Edit, QStringLiteral("?"));
    QCOMPARE(ui->text_Edit->text(), QStringLiteral("a│？b"));
    QCOMPARE(count.scenes, 2);
    QCOMPARE(ui->text_View->findChildren<QGraphicsScene *>().size(), 1);
}

void TestTextTab::everyControlRenders()
{
    ui->text_Edit->setText(QStringLiteral("HF"));
    const QImage plain = window->textPixmap.toImage();
    const int width = window->patternWidth;
    ui->Text_slide->setValue(10);
    QCOMPARE(window->textPixmap.width(), 2 * (plain.width() - 50) + 50);
    QVERIFY(window->patternWidth > width * 3 / 2);
    ui->Text_slide->setValue(5);
    ui->Font_size->setCurrentIndex(4);
    QCOMPARE(window->textPixmap.height(), plain.height() * 2);
    ui->Font_size->setCurrentIndex(9);
    ui->Text_revH->setChecked(true);
    QCOMPARE(window->textPixmap.toImage(), plain.mirrored(true, false));
    ui->Text_revV->click();
    QCOMPARE(window->textPixmap.toImage(), plain.mirrored(true, true));
    ui->Text_revV->click();
    ui->Text_revH->setChecked(false);
    QCOMPARE(window->textPixmap.toImage(), plain);
    SceneCount count(ui->text_View);
    ui->fontComboBox->setCurrentIndex(ui->fontComboBox->currentIndex() == 0 ? 1 : 0);
    QVERIFY(count.scenes >= 1);
    ui->Leds->setValue(36);
    QCOMPARE(ui->GLWidget->patternImage.height(), 36);
    ui->Font_size->setCurrentIndex(-1); // no row: as the first
    QVERIFY(!window->textPixmap.isNull());
}

void TestTextTab::numbersEditTheChosenColour()
{
    ui->text_rnum->setValue(10);
    QCOMPARE(ui->text_rslide->value(), 10);
    ui->text_gslide->setValue(20);
    QCOMPARE(ui->text_gnum->value(), 20);
    ui->text_bnum->setValue(30);
    QCOMPARE(window->foreColor, QColor(10, 20, 30));
    QCOMPARE(window->backColor, QColor(0, 0, 0));
    ui->text_bcolor->setChecked(true);
    QCOMPARE(ui->text_rnum->value(), 0);
    ui->text_rslide->setValue(200);
    ui->text_gnum->setValue(100);
    ui->text_bslide->setValue(50);
    QCOMPARE(window->foreColor, QColor(10, 20, 30));
    QCOMPARE(window->backColor, QColor(200, 100, 50));
    const QImage image = window->textPixmap.toImage();
    QCOMPARE(image.pixelColor(image.width() - 1, image.height() - 1), QColor(200, 100, 50));
    // The preview shows the new back colour at once.
    QCOMPARE(QColor(ui->GLWidget->pixelAt(ui->GLWidget->columnCount - 1, 69)), QColor(200, 100, 50));
}

void TestTextTab::switchingLoadsTheNumbers()
{
    window->foreColor = QColor(1, 2, 3);
    window->backColor = QColor(4, 5, 6);
    ui->text_bcolor->setChecked(true);
    QCOMPARE(QColor(ui->text_rnum->value(), ui->text_gnum->value(), ui->text_bnum->value()), QColor(4, 5, 6));
    ui->text_fcolor->setChecked(true);
    QCOMPARE(QColor(ui->text_rnum->value(), ui->text_gnum->value(), ui->text_bnum->value()), QColor(1, 2, 3));
    QCOMPARE(window->foreColor, QColor(1, 2, 3));
    QCOMPARE(window->backColor, QColor(4, 5, 6));
}

void TestTextTab::swappingColours()
{
    ui->text_rnum->setValue(11);
    ui->text_gnum->setValue(22);
    ui->text_bnum->setValue(33);
    const QImage before = window->textPixmap.toImage();
    ui->Color_Exc->click();
    QCOMPARE(window->foreColor, QColor(0, 0, 0));
    QCOMPARE(window->backColor, QColor(11, 22, 33));
    QVERIFY(ui->text_bcolor->isChecked() && !ui->text_fcolor->isChecked());
    QCOMPARE(QColor(ui->text_rnum->value(), ui->text_gnum->value(), ui->text_bnum->value()), QColor(11, 22, 33));
    QVERIFY(window->textPixmap.toImage() != before);
    ui->Color_Exc->click();
    QCOMPARE(window->foreColor, QColor(11, 22, 33));
    QCOMPARE(window->backColor, QColor(0, 0, 0));
    QVERIFY(ui->text_fcolor->isChecked());
    QCOMPARE(QColor(ui->text_rnum->value(), ui->text_gnum->value(), ui->text_bnum->value()), QColor(11, 22, 33));
    QCOMPARE(window->textPixmap.toImage(), before);
}

void TestTextTab::colourDialogOfTheText()
{
    DialogDriver driver;
    driver.answerColor(QColor(9, 8, 7));
    ui->Color_dialog->click();
    QCOMPARE(window->foreColor, QColor(9, 8, 7));
    QCOMPARE(ui->text_rnum->value(), 255); // the numbers stay
    ui->text_bcolor->setChecked(true);
    driver.answerColor(QColor(70, 80, 90));
    ui->Color_dialog->click();
    QCOMPARE(window->backColor, QColor(70, 80, 90));
    driver.answerColor(QColor());
    SceneCount count(ui->text_View);
    ui->Color_dialog->click();
    QCOMPARE(window->backColor, QColor(70, 80, 90));
    QCOMPARE(count.scenes, 1); // rendered either way
    QVERIFY(driver.done());
}

void TestTextTab::tooLongTextsSaySo()
{
    window->statusBar()->clearMessage();
    ui->text_Edit->setText(QString(2000, QLatin1Char('W')));
    QVERIFY(!window->statusBar()->currentMessage().isEmpty());
    QCOMPARE(window->textPixmap.width(), 50);
    window->on_Add_Button_clicked();
    QCOMPARE(window->currentTimeline->items.size(), 1);
    QVERIFY(!window->currentTimeline->items.first()->thumbnail.isNull());
    ui->text_Edit->setText(QString());
    QCOMPARE(window->textPixmap.width(), 50);
}

void TestTextTab::colourNumbersAndSliders()
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
}

void TestTextTab::colourDialogOfTheTab()
{
    ui->Mode_Pic->setCurrentIndex(glow::ColourPattern);
    DialogDriver driver;
    driver.answerColor(QColor(10, 255, 30));
    ui->Color_View->click();
    QCOMPARE(window->foreColor, QColor(10, 255, 30));
    QCOMPARE(ui->Color_B->value(), 30);
    // Two channels changed, and their slots wrote the short form.
    QCOMPARE(ui->Color_View->styleSheet(), QStringLiteral("background-color: rgb(10,255,30);"));
    QCOMPARE(QColor(ui->GLWidget->pixelAt(0, 0)), QColor(10, 255, 30));
    // The same colour again: only the dialog's own form is left.
    driver.answerColor(QColor(10, 255, 30));
    ui->Color_View->click();
    QCOMPARE(ui->Color_View->styleSheet(),
             QStringLiteral("background-color: rgb(10, 255, 30);color: rgb(255, 255, 255);"));
    driver.answerColor(QColor());
    ui->Color_View->click();
    QCOMPARE(window->foreColor, QColor(10, 255, 30));
    QVERIFY(driver.done());
}

QTEST_MAIN(TestTextTab)
#include "test_texttab.moc"
