// The effect tab: every control changes a parameter and draws the effect anew.
#include "app/mainwindow.h"

#include "render/patternview.h"
#include "show/draw/effectimage.h"
#include "show/draw/randomdraw.h"
#include "show/model/propvalues.h"
#include "show/model/repeatrules.h"
#include "ui_mainwindow.h"

#include <QColorDialog>

#include <utility>

glow::EffectSettings MainWindow::effectTab() const
{
    glow::EffectSettings settings;
    settings.row = ui->Spe_comboBox->currentIndex();
    settings.front = foreColor;
    settings.back = backColor;
    settings.width = ui->Spe_width->value();
    settings.mode = ui->Spe_color3->checkState();
    settings.flipH = ui->Spe_revH->isChecked();
    settings.flipV = ui->Spe_revV->isChecked();
    return settings;
}

void MainWindow::on_Spe_comboBox_currentIndexChanged(int index)
{
    glow::EffectSettings settings = effectTab();
    settings.row = index;
    effectPixmap = QPixmap::fromImage(glow::effectImage(settings));
    previewInEditor(effectPixmap);
    glow::showPattern(*ui->Spe_show, effectPixmap);
    patternWidth = glow::columnsAtHeight(effectPixmap, ledCount);
    ui->suggest->setValue(suggestRepeat());
}

void MainWindow::renderEffect()
{
    on_Spe_comboBox_currentIndexChanged(ui->Spe_comboBox->currentIndex());
}

// Moving over a row of the open list previews it and selects it.
void MainWindow::on_Spe_comboBox_highlighted(int index)
{
    on_Spe_comboBox_currentIndexChanged(index);
    ui->Spe_comboBox->setCurrentIndex(index);
}

void MainWindow::on_Spe_width_valueChanged(int /*value*/)
{
    renderEffect();
}

void MainWindow::on_Spe_revV_clicked()
{
    renderEffect();
}

void MainWindow::on_Spe_revH_clicked()
{
    renderEffect();
}

void MainWindow::on_Spe_color3_clicked()
{
    renderEffect();
}

// The numbers do the work here and the sliders only pass their values on: the other way round than on the text tab.
void MainWindow::on_Spe_rnum_valueChanged(int value)
{
    ui->Spe_rslide->setValue(value);
    (ui->Spe_back->isChecked() ? backColor : foreColor).setRed(value);
    renderEffect();
}

void MainWindow::on_Spe_gnum_valueChanged(int value)
{
    ui->Spe_gslide->setValue(value);
    (ui->Spe_back->isChecked() ? backColor : foreColor).setGreen(value);
    renderEffect();
}

void MainWindow::on_Spe_bnum_valueChanged(int value)
{
    ui->Spe_bslide->setValue(value);
    (ui->Spe_back->isChecked() ? backColor : foreColor).setBlue(value);
    renderEffect();
}

void MainWindow::on_Spe_rslide_valueChanged(int value)
{
    ui->Spe_rnum->setValue(value);
}

void MainWindow::on_Spe_gslide_valueChanged(int value)
{
    ui->Spe_gnum->setValue(value);
}

void MainWindow::on_Spe_bslide_valueChanged(int value)
{
    ui->Spe_bnum->setValue(value);
}

void MainWindow::on_Spe_back_toggled(bool checked)
{
    const QColor colour = checked ? backColor : foreColor;
    ui->Spe_rnum->setValue(colour.red());
    ui->Spe_gnum->setValue(colour.green());
    ui->Spe_bnum->setValue(colour.blue());
    renderEffect();
}

// The numbers are not refreshed: they follow at the next change between front and back.
void MainWindow::on_Color_dialog_2_clicked()
{
    QColor &edited = ui->Spe_back->isChecked() ? backColor : foreColor;
    const QColor answer = QColorDialog::getColor(edited, this, tr("選擇顏色"));
    if (answer.isValid()) {
        edited = answer;
    }
    renderEffect();
}

// The radio buttons change places along with the colours, so the numbers stay. Toggling the checked button of an
// exclusive pair does nothing; the other toggle is the one that counts.
void MainWindow::on_Color_Exc2_clicked()
{
    std::swap(foreColor, backColor);
    renderEffect();
    if (ui->Spe_front->isChecked()) {
        ui->Spe_front->toggle();
        ui->Spe_back->toggle();
    } else {
        ui->Spe_back->toggle();
        ui->Spe_front->toggle();
    }
}

// The draws are statements of their own: their order makes a seed's sequence repeatable. What changes on the way draws
// the effect; there is no final drawing.
void MainWindow::on_Spe_randon_clicked()
{
    ui->Spe_width->setValue(glow::randomDraw() % 10 + 1);
    ui->Spe_color3->setCheckState(static_cast<Qt::CheckState>(glow::randomDraw() % 3));
    ui->Spe_front->toggle();
    ui->Spe_revH->setChecked(glow::randomDraw() % 2 != 0);
    ui->Spe_revV->setChecked(glow::randomDraw() % 2 != 0);
    const int blue = glow::randomDraw() % 256;
    const int green = glow::randomDraw() % 256;
    const int red = glow::randomDraw() % 256;
    backColor = QColor(red, green, blue, 255);
    ui->Spe_rnum->setValue(glow::randomDraw() % 256);
    ui->Spe_gnum->setValue(glow::randomDraw() % 256);
    ui->Spe_bnum->setValue(glow::randomDraw() % 256);
    ui->Spe_comboBox->setCurrentIndex(glow::randomDraw() % qMax(1, ui->Spe_comboBox->count()));
    ui->Speed_slide->setValue(glow::randomDraw() % 17 + 2);
}
