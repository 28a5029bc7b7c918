// The text tab, and the colour tab, which shares its colours.
#include "app/mainwindow.h"

#include "forms/statusnotes.h"
#include "render/patternview.h"
#include "render/textimage.h"
#include "show/model/propvalues.h"
#include "show/model/repeatrules.h"
#include "show/model/settingstext.h"
#include "ui_mainwindow.h"

#include <QColorDialog>
#include <QStatusBar>

#include <utility>

glow::TextSettings MainWindow::textTab() const
{
    glow::TextSettings settings;
    settings.fore = foreColor;
    settings.back = backColor;
    settings.text = ui->text_Edit->text();
    settings.font = ui->fontComboBox->currentIndex();
    settings.sizeIndex = ui->Font_size->currentIndex();
    settings.slide = ui->Text_slide->value();
    settings.flipH = ui->Text_revH->isChecked();
    settings.flipV = ui->Text_revV->isChecked();
    return settings;
}

void MainWindow::on_text_Edit_textChanged(const QString &text)
{
    // The settings text has no escape for its separators. The clean text comes back here through the field.
    const QString clean = glow::withoutSeparators(text);
    if (clean != text) {
        const int cursor = ui->text_Edit->cursorPosition();
        ui->text_Edit->setText(clean);
        ui->text_Edit->setCursorPosition(cursor);
        return;
    }
    glow::TextOptions options;
    options.text = text;
    options.family = ui->fontComboBox->currentText();
    options.fore = foreColor;
    options.back = backColor;
    options.sizeIndex = ui->Font_size->currentIndex();
    options.slide = ui->Text_slide->value();
    options.flipH = ui->Text_revH->isChecked();
    options.flipV = ui->Text_revV->isChecked();
    const glow::TextResult result = glow::renderText(options);
    if (result.tooLong) {
        statusBar()->showMessage(tr("文字過長，無法顯示"));
    } else {
        glow::retract(statusBar(), tr("文字過長，無法顯示"));
    }
    textPixmap = QPixmap::fromImage(result.image);
    previewInEditor(textPixmap);
    glow::showPattern(*ui->text_View, QPixmap::fromImage(result.image.scaledToHeight(120, Qt::SmoothTransformation)));
    patternWidth = glow::columnsAtHeight(textPixmap, ledCount);
    ui->suggest->setValue(suggestRepeat());
}

void MainWindow::renderText()
{
    on_text_Edit_textChanged(ui->text_Edit->text());
}

void MainWindow::on_fontComboBox_currentIndexChanged(int index)
{
    Q_UNUSED(index)
    renderText();
}

void MainWindow::on_Font_size_currentIndexChanged(int index)
{
    Q_UNUSED(index)
    renderText();
}

void MainWindow::on_Text_slide_valueChanged(int value)
{
    Q_UNUSED(value)
    renderText();
}

void MainWindow::on_Text_revH_stateChanged(int state)
{
    Q_UNUSED(state)
    renderText();
}

void MainWindow::on_Text_revV_clicked(bool checked)
{
    Q_UNUSED(checked)
    renderText();
}

void MainWindow::on_text_rnum_valueChanged(int value)
{
    ui->text_rslide->setValue(value);
}

void MainWindow::on_text_gnum_valueChanged(int value)
{
    ui->text_gslide->setValue(value);
}

void MainWindow::on_text_bnum_valueChanged(int value)
{
    ui->text_bslide->setValue(value);
}

QColor &MainWindow::selectedTextColor()
{
    return ui->text_fcolor->isChecked() ? foreColor : backColor;
}

void MainWindow::on_text_rslide_valueChanged(int value)
{
    ui->text_rnum->setValue(value);
    selectedTextColor().setRed(value);
    renderText();
}

void MainWindow::on_text_gslide_valueChanged(int value)
{
    ui->text_gnum->setValue(value);
    selectedTextColor().setGreen(value);
    renderText();
}

void MainWindow::on_text_bslide_valueChanged(int value)
{
    ui->text_bnum->setValue(value);
    selectedTextColor().setBlue(value);
    renderText();
}

void MainWindow::on_text_bcolor_toggled(bool checked)
{
    // The fields write the colour as they change, so its channels are noted first.
    const QColor color = checked ? backColor : foreColor;
    ui->text_rnum->setValue(color.red());
    ui->text_gnum->setValue(color.green());
    ui->text_bnum->setValue(color.blue());
    renderText();
}

void MainWindow::on_Color_dialog_clicked()
{
    QColor &color = ui->text_bcolor->isChecked() ? backColor : foreColor;
    const QColor answer = QColorDialog::getColor(color, this, tr("選擇顏色"));
    if (answer.isValid()) {
        color = answer;
    }
    renderText();
}

void MainWindow::on_Color_Exc_clicked()
{
    std::swap(foreColor, backColor);
    renderText();
    // In an exclusive pair toggling the checked button does nothing: the other one becomes checked.
    if (ui->text_bcolor->isChecked()) {
        ui->text_bcolor->toggle();
        ui->text_fcolor->toggle();
    } else {
        ui->text_fcolor->toggle();
        ui->text_bcolor->toggle();
    }
}

void MainWindow::showColor()
{
    const int brightness = qGray(ui->Color_R->value(), ui->Color_G->value(), ui->Color_B->value());
    ui->Color_View->setProperty("light", brightness > 127); // the style sheet's text is dark there
    ui->Color_View->setStyleSheet(QStringLiteral("background-color: rgb(%1,%2,%3);")
                                      .arg(ui->Color_R->value())
                                      .arg(ui->Color_G->value())
                                      .arg(ui->Color_B->value()));
    Oviewer_change(ui->R_slide->value(), ui->G_slide->value(), ui->B_slide->value());
}

void MainWindow::on_Color_R_valueChanged(int arg1)
{
    ui->R_slide->setValue(arg1);
    foreColor.setRed(arg1);
    showColor();
}

void MainWindow::on_Color_G_valueChanged(int arg1)
{
    ui->G_slide->setValue(arg1);
    foreColor.setGreen(arg1);
    showColor();
}

void MainWindow::on_Color_B_valueChanged(int arg1)
{
    ui->B_slide->setValue(arg1);
    foreColor.setBlue(arg1);
    showColor();
}

void MainWindow::on_R_slide_valueChanged(int value)
{
    ui->Color_R->setValue(value);
}

void MainWindow::on_G_slide_valueChanged(int value)
{
    ui->Color_G->setValue(value);
}

void MainWindow::on_B_slide_valueChanged(int value)
{
    ui->Color_B->setValue(value);
}

void MainWindow::on_Color_View_clicked()
{
    const QColor answer = QColorDialog::getColor(foreColor, this, tr("選擇顏色"));
    if (!answer.isValid()) {
        return;
    }
    foreColor = answer;
    ui->Color_View->setStyleSheet(QStringLiteral("background-color: rgb(%1, %2, %3);color: rgb(255, 255, 255);")
                                      .arg(answer.red())
                                      .arg(answer.green())
                                      .arg(answer.blue()));
    ui->Color_R->setValue(answer.red());
    ui->Color_G->setValue(answer.green());
    ui->Color_B->setValue(answer.blue());
    Oviewer_change(ui->R_slide->value(), ui->G_slide->value(), ui->B_slide->value());
}
