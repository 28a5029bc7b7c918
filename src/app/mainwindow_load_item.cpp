// A pattern's way back into the panel.
#include "app/mainwindow.h"

#include "show/model/settingstext.h"
#include "timeline/timelineitem.h"
#include "ui_mainwindow.h"

#include <QFile>
#include <QMessageBox>

namespace {

QColor namedColour(const QString &name)
{
    QColor colour;
    colour.setNamedColor(name);
    return colour;
}

} // namespace

void MainWindow::fillEditor(const glow::SettingsText &settings, bool fromOldFile)
{
    switch (settings.kind()) {
    case glow::PicturePattern:
        ui->Pic_Slide->setValue(settings.flagNumber(0));
        ui->Pic_revH->setChecked(settings.flag(1));
        ui->Pic_revV->setChecked(settings.flag(2));
        if (fromOldFile || QFile::exists(settings.picturePath())) {
            ui->PicDir->setText(settings.picturePath());
        } else {
            askForLostPicture();
        }
        break;
    case glow::ColourPattern:
        foreColor = namedColour(settings.fields.value(1));
        break;
    case glow::TextPattern:
        foreColor = namedColour(settings.value(0));
        backColor = namedColour(settings.value(1));
        ui->fontComboBox->setCurrentIndex(settings.value(3).toInt());
        ui->Font_size->setCurrentIndex(settings.value(4).toInt());
        ui->Text_slide->setValue(settings.flagNumber(0));
        ui->Text_revH->setChecked(settings.flag(1));
        ui->Text_revV->setChecked(settings.flag(2));
        ui->text_Edit->setText(settings.value(2));
        break;
    case glow::EffectPattern: {
        foreColor = namedColour(settings.value(0));
        backColor = namedColour(settings.value(1));
        ui->Spe_comboBox->setCurrentIndex(settings.value(2).toInt());
        bool isNumber = false;
        const int mode = settings.value(3).toInt(&isNumber);
        if (isNumber && mode >= Qt::Unchecked && mode <= Qt::Checked) {
            ui->Spe_color3->setCheckState(static_cast<Qt::CheckState>(mode));
        }
        ui->Spe_width->setValue(settings.value(4).toInt());
        // Old files have always had an effect's flips read into the text tab's boxes.
        (fromOldFile ? ui->Text_revH : ui->Spe_revH)->setChecked(settings.flag(1));
        (fromOldFile ? ui->Text_revV : ui->Spe_revV)->setChecked(settings.flag(2));
        break;
    }
    default:
        return;
    }
    if (ui->Mode_Pic->currentIndex() != settings.kind()) {
        ui->Mode_Pic->setCurrentIndex(settings.kind());
    } else {
        on_Mode_Pic_currentChanged(settings.kind());
    }
}

void MainWindow::loadItemToEditor(TimelineItem *item)
{
    if (currentItem != nullptr && currentItem != item) {
        currentItem->selected = 0;
        currentItem->update();
    }
    currentItem = item;
    item->selected = 1;
    item->update();
    ui->EDIT_radio->setChecked(true);
    ui->NEW_radio->setChecked(false);
    ui->Add_Button->setEnabled(true);
    ui->Mode_t1->setTime(item->startTime);
    ui->Mode_t2->setTime(item->endTime);

    const QString text = item->settingsText;
    if (glow::isOutdatedSettings(text)) {
        QMessageBox::warning(this, tr("無法讀取"), tr("儲存格式過舊，請使用舊版軟體(v2.9↓)進行轉檔"), QMessageBox::Ok);
        return;
    }
    const glow::SettingsText settings = glow::parseSettings(text);
    // The lost-picture question runs an event loop of its own; the numbers are noted before it.
    const int speed = item->speedValue;
    const int repeat = item->repeatCount;
    fillEditor(settings, false);

    if (!settings.hasGroups() || speed < 1) {
        ui->radio_speed_m->setChecked(true);
        ui->Mode_loop->setValue(repeat);
    } else {
        ui->radio_speed_slide->setChecked(true);
        ui->Speed_slide->setValue(speed);
        emit ui->Speed_slide->valueChanged(speed);
    }
}
