// The effect tab of the real window: its controls, its two colours, the random button.
#include "app/mainwindow.h"
#include "app/propvalues.h"
#include "preview/mygl.h"
#include "render/effectimage.h"
#include "render/randomdraw.h"
#include "support/dialogdriver.h"
#include "support/testenv.h"
#include "ui_mainwindow.h"

#include <QGraphicsPixmapItem>
#include <QGraphicsScene>
#include <QtTest>

class TestEffectTab : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void everyControlDrawsAnew();
    void pointingAtARowSelectsIt();
    void numbersEditTheChosenColour();
    void colourDialogLeavesTheNumbers();
    void swappingKeepsTheNumbers();
    void randomDrawsInOrder();

private:
    // The picture that the controls ask for at present.
    QImage asked() const
    {
        glow::EffectSettings settings;
        settings.row = ui->Spe_comboBox->currentIndex();
        settings.front = window->foreColor;
        settings.back = window->backColor;
        settings.width = ui->Spe_width->value();
        settings.mode = ui->Spe_color3->checkState();
        settings.flipH = ui->Spe_revH->isChecked();
        settings.flipV = ui->Spe_revV->isChecked();
        return glow::effectImage(settings);
    }
    QImage made() const { return window->effectPixmap.toImage().convertToFormat(asked().format()); }
    QVector<int> numbers() const { return {ui->Spe_rnum->value(), ui->Spe_gnum->value(), ui->Spe_bnum->value()}; }

    QScopedPointer<TestEnv> env;
    QScopedPointer<MainWindow> window;
    Ui::MainWindow *ui = nullptr;
};

void TestEffectTab::init()
{
    env.reset(new TestEnv);
    window.reset(new MainWindow);
    ui = window->ui;
    window->show();
    ui->Mode_Pic->setCurrentIndex(3);
}

void TestEffectTab::cleanup()
{
    window.reset();
    env.reset();
}

void TestEffectTab::everyControlDrawsAnew()
{
    const QVector<std::function<void()>> controls = {
        [this] { ui->Spe_comboBox->setCurrentIndex(glow::MeteorEffect); },
        [this] { ui->Spe_width->setValue(9); },
        [this] { ui->Spe_color3->click(); },
        [this] { ui->Spe_revV->click(); },
        [this] { ui->Spe_revH->click(); },
        [this] { ui->Spe_rnum->setValue(17); },
        [this] { ui->Spe_gslide->setValue(93); },
        [this] { ui->Spe_back->click(); },
        [this] { ui->Spe_bnum->setValue(140); },
    };
    QCOMPARE(made(), asked());
    for (const auto &control : controls) {
        const QImage before = made();
        const bool onlySelects = before == asked() && &control == &controls.at(7);
        control();
        QCOMPARE(made(), asked());
        QVERIFY(onlySelects || made() != before);
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
    }
    QCOMPARE(window->patternWidth, 2 * ledCount);
    QCOMPARE(ui->suggest->value(), window->suggestRepeat());
}

void TestEffectTab::pointingAtARowSelectsIt()
{
    emit ui->Spe_comboBox->highlighted(glow::CrossEffect);
    QCOMPARE(ui->Spe_comboBox->currentIndex(), int(glow::CrossEffect));
    QCOMPARE(made(), asked());
}

void TestEffectTab::numbersEditTheChosenColour()
{
    window->foreColor = QColor(1, 2, 3);
    window->backColor = QColor(4, 5, 6);
    ui->Spe_back->click();
    QCOMPARE(numbers(), (QVector<int>{4, 5, 6}));
    ui->Spe_gnum->setValue(77);
    QCOMPARE(ui->Spe_gslide->value(), 77);
    QCOMPARE(window->backColor, QColor(4, 77, 6));
    QCOMPARE(window->foreColor, QColor(1, 2, 3));
    ui->Spe_front->click();
    QCOMPARE(numbers(), (QVector<int>{1, 2, 3}));
    ui->Spe_rslide->setValue(200);
    QCOMPARE(window->foreColor, QColor(200, 2, 3));
    QCOMPARE(window->backColor, QColor(4, 77, 6));
}

void TestEffectTab::colourDialogLeavesTheNumbers()
{
    DialogDriver driver;
    driver.answerColor(QColor(9, 8, 7));
    ui->Color_dialog_2->click();
    QCOMPARE(window->foreColor, QColor(9, 8, 7));
    QCOMPARE(numbers(), (QVector<int>{255, 255, 255}));
    QCOMPARE(made(), asked());
    driver.answerColor(QColor());
    ui->Color_dialog_2->click();
    QCOMPARE(window->foreColor, QColor(9, 8, 7));
    ui->Spe_back->click();
    driver.answerColor(QColor(60, 70, 80));
    ui->Color_dialog_2->click();
    QCOMPARE(window->backColor, QColor(60, 70, 80));
    QCOMPARE(made(), asked());
    ui->Spe_front->click();
    QCOMPARE(numbers(), (QVector<int>{9, 8, 7}));
    QVERIFY(driver.done());
}

void TestEffectTab::swappingKeepsTheNumbers()
{
    ui->Spe_rnum->setValue(10);
    const QVector<int> before = numbers();
    ui->Color_Exc2->click();
    QCOMPARE(window->foreColor, QColor(Qt::black));
    QCOMPARE(window->backColor, QColor(10, 255, 255));
    QVERIFY(ui->Spe_back->isChecked());
    QCOMPARE(numbers(), before);
    QCOMPARE(made(), asked());
    ui->Color_Exc2->click();
    QCOMPARE(window->foreColor, QColor(10, 255, 255));
    QCOMPARE(window->backColor, QColor(Qt::black));
    QVERIFY(ui->Spe_front->isChecked());
    QCOMPARE(numbers(), before);
}

void TestEffectTab::randomDrawsInOrder()
{
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
        QCOMPARE(numbers(), (QVector<int>{draws.at(7) % 256, draws.at(8) % 256, draws.at(9) % 256}));
        QCOMPARE(window->foreColor, QColor(draws.at(7) % 256, draws.at(8) % 256, draws.at(9) % 256));
        QCOMPARE(ui->Spe_comboBox->currentIndex(), draws.at(10) % 14);
        QCOMPARE(ui->Speed_slide->value(), draws.at(11) % 17 + 2);
        QCOMPARE(made(), asked());
    }
}

QTEST_MAIN(TestEffectTab)
#include "test_effecttab.moc"
