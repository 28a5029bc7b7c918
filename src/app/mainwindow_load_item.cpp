// A pattern's way back into the panel.
#include "app/mainwindow.h"

#include "show/model/settingstext.h"
#include "timeline/timelineitem.h"
#include "ui_mainwindow.h"

#include <QFile>
#include <QMessageBox>

void MainWindow::fillTab(const glow::PictureSettings &settings, Origin origin)
{
    ui->Pic_Slide->setValue(settings.gap);
    ui->Pic_revH->setChecked(settings.flipH);
    ui->Pic_revV->setChecked(settings.flipV);
    if (origin == Origin::OldFile || QFile::exists(settings.path)) {
        ui->PicDir->setText(settings.path);
    } else {
        askForLostPicture();
    }
}

void MainWindow::fillTab(const glow::ColourSettings &settings, Origin /*origin*/)
{
    foreColor = settings.colour;
}

void MainWindow::fillTab(const glow::TextSettings &settings, Origin /*origin*/)
{
    foreColor = settings.fore;
    backColor = settings.back;
    ui->fontComboBox->setCurrentIndex(settings.font);
    ui->Font_size->setCurrentIndex(settings.sizeIndex);
    ui->Text_slide->setValue(settings.slide);
    ui->Text_revH->setChecked(settings.flipH);
    ui->Text_revV->setChecked(settings.flipV);
    ui->text_Edit->setText(settings.text);
}

void MainWindow::fillTab(const glow::EffectSettings &settings, Origin origin)
{
    foreColor = settings.front;
    backColor = settings.back;
    ui->Spe_comboBox->setCurrentIndex(settings.row);
    if (settings.mode >= Qt::Unchecked && settings.mode <= Qt::Checked) {
        ui->Spe_color3->setCheckState(static_cast<Qt::CheckState>(settings.mode));
    }
    ui->Spe_width->setValue(settings.width);
    // Old files have always had an effect's flips read into the text tab's boxes.
    const bool old = origin == Origin::OldFile;
    (old ? ui->Text_revH : ui->Spe_revH)->setChecked(settings.flipH);
    (old ? ui->Text_revV : ui->Spe_revV)->setChecked(settings.flipV);
}

void MainWindow::showInPanel(const glow::PatternSettings &settings, Origin origin)
{
    std::visit([this, origin](const auto &ofKind) { fillTab(ofKind, origin); }, settings);
    const int tab = static_cast<int>(settings.index()); // the tabs stand in the order of the kinds
    if (ui->Mode_Pic->currentIndex() != tab) {
        ui->Mode_Pic->setCurrentIndex(tab);
    } else {
        on_Mode_Pic_currentChanged(tab);
    }
}

void MainWindow::loadItemToEditor(TimelineItem *item)
{
    deselect();
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
    const glow::ParsedSettings parsed = glow::parseSettings(text);
    // The lost-picture question runs an event loop of its own; the numbers are noted before it.
    const int speed = item->speedValue;
    const int repeat = item->repeatCount;
    if (parsed.settings.has_value()) {
        showInPanel(*parsed.settings, Origin::Item);
    }

    if (!parsed.repeats.has_value() || speed < 1) {
        ui->radio_speed_m->setChecked(true);
        ui->Mode_loop->setValue(repeat);
    } else {
        ui->radio_speed_slide->setChecked(true);
        ui->Speed_slide->setValue(speed);
        emit ui->Speed_slide->valueChanged(speed);
    }
}
