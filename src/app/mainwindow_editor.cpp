// The pattern panel: its fields keep each other in step, and a pattern goes from here onto the current track.
#include "app/mainwindow.h"

#include "show/base/numbers.h"
#include "show/model/propvalues.h"
#include "show/model/repeatrules.h"
#include "show/model/settingstext.h"
#include "song/mytime.h"
#include "timeline/indicator.h"
#include "timeline/timeline.h"
#include "timeline/timelineheaders.h"
#include "timeline/timelineitem.h"
#include "ui_mainwindow.h"

#include <QFile>
#include <QSignalBlocker>

int MainWindow::suggestRepeat() const
{
    return glow::suggestedRepeat(ui->Mode_last->value(), ui->Speed_slide->value(), patternWidth, frameRate);
}

void MainWindow::on_Mode_t1_timeChanged(const QTime &time)
{
    ui->Mode_t2->setTime(glow::timeOf(glow::truncated(ui->Mode_last->value() * 1000 + glow::msOf(time))));
}

void MainWindow::on_Mode_t2_timeChanged(const QTime &time)
{
    const double seconds = (glow::msOf(time) - glow::msOf(ui->Mode_t1->time())) / 1000.0;
    ui->Mode_last->setValue(seconds);
    // A length that the field clips to the value it already holds is no change to it, and yet the end has to move.
    if (seconds < ui->Mode_last->minimum() || seconds > ui->Mode_last->maximum()) {
        on_Mode_last_valueChanged(ui->Mode_last->value());
    }
}

void MainWindow::on_Mode_last_valueChanged(double seconds)
{
    ui->suggest->setValue(suggestRepeat());
    ui->Mode_loop->blockSignals(false);
    const QSignalBlocker blocker(ui->Mode_t2);
    // Rounded here, cut when the start moves.
    ui->Mode_t2->setTime(glow::timeOf(glow::msOf(ui->Mode_t1->time()) + glow::truncated(seconds * 1000 + 0.5)));
}

void MainWindow::on_Mode_loop_valueChanged(int count)
{
    Q_UNUSED(count)
    // Typing a count selects fixed mode; setting it by program does not.
    if (ui->Mode_loop->hasFocus()) {
        ui->radio_speed_m->setChecked(true);
    }
    switch (ui->Mode_Pic->currentIndex()) {
    case glow::PicturePattern:
        previewInEditor(picturePixmap);
        break;
    case glow::ColourPattern:
        Oviewer_change();
        break;
    case glow::TextPattern:
        previewInEditor(textPixmap);
        break;
    case glow::EffectPattern:
        previewInEditor(effectPixmap);
        break;
    default:
        break;
    }
}

void MainWindow::on_suggest_valueChanged(int count)
{
    if (ui->radio_speed_slide->isChecked()) {
        ui->Mode_loop->setValue(count);
    }
}

void MainWindow::on_Speed_slide_valueChanged(int value)
{
    Q_UNUSED(value)
    ui->suggest->setValue(suggestRepeat());
}

void MainWindow::on_radio_speed_slide_toggled(bool on)
{
    ui->Mode_loop->setEnabled(!on);
    if (on) {
        ui->Mode_loop->setValue(ui->suggest->value());
    }
}

void MainWindow::on_NEW_radio_toggled(bool on)
{
    if (!on) {
        ui->Add_Button->setText(tr("確認編輯"));
        return;
    }
    deselect();
    ui->Add_Button->setText(tr("新增"));
    ui->Mode_t1->setTime(ui->timeline_headers->indicator->indicatorTime);
}

void MainWindow::on_Mode_Pic_currentChanged(int index)
{
    ui->suggest->setEnabled(false);
    const bool canAdd = index != glow::PicturePattern || QFile::exists(ui->PicDir->text());
    ui->Add_Button->setEnabled(canAdd);
    switch (index) {
    case glow::PicturePattern:
        if (canAdd) {
            picload(ui->PicDir->text());
        }
        break;
    case glow::ColourPattern: {
        // The fields write foreColor as they change, so its channels are noted first.
        const QColor colour = foreColor;
        ui->Color_R->setValue(colour.red());
        ui->Color_G->setValue(colour.green());
        ui->Color_B->setValue(colour.blue());
        Oviewer_change();
        break;
    }
    case glow::TextPattern: {
        ui->text_fcolor->setChecked(true);
        const QColor colour = foreColor;
        ui->text_rnum->setValue(colour.red());
        ui->text_gnum->setValue(colour.green());
        ui->text_bnum->setValue(colour.blue());
        renderText();
        break;
    }
    case glow::EffectPattern: {
        ui->Spe_front->setChecked(true);
        const QColor colour = foreColor;
        ui->Spe_rnum->setValue(colour.red());
        ui->Spe_gnum->setValue(colour.green());
        ui->Spe_bnum->setValue(colour.blue());
        renderEffect();
        break;
    }
    default:
        break;
    }
    ui->suggest->setValue(suggestRepeat());
}

void MainWindow::on_Addbutton_hovered(bool over)
{
    const bool idle = player->state() != QMediaPlayer::PlayingState && !ui->Song_time->clockTimer->isActive();
    const bool show = over && ui->NEW_radio->isChecked() && idle;
    currentTimeline->showReadyBand(show, glow::msOf(ui->Mode_t1->time()),
                                   glow::truncated(ui->Mode_last->value() * 1000));
}

glow::PatternSettings MainWindow::panel() const
{
    switch (ui->Mode_Pic->currentIndex()) {
    case glow::PicturePattern:
        return glow::PictureSettings{ui->PicDir->text(), ui->Pic_Slide->value(), ui->Pic_revH->isChecked(),
                                     ui->Pic_revV->isChecked()};
    case glow::ColourPattern:
        return glow::ColourSettings{foreColor};
    case glow::TextPattern:
        return textTab();
    default:
        return effectTab();
    }
}

std::optional<glow::PatternRecord> MainWindow::editorPattern() const
{
    glow::PatternRecord record;
    record.startTime = ui->Mode_t1->time();
    record.endTime = ui->Mode_t2->time();
    record.patternKind = ui->Mode_Pic->currentIndex();
    record.repeatCount = ui->Mode_loop->value();
    record.speedValue = ui->radio_speed_slide->isChecked() ? ui->Speed_slide->value() : 0;
    record.settingsText = glow::composeSettings(panel(), record.repeatCount);

    QPixmap picture;
    switch (record.patternKind) {
    case glow::PicturePattern:
        if (picturePixmap.isNull()) {
            return std::nullopt;
        }
        picture = picturePixmap.scaledToHeight(80, Qt::SmoothTransformation);
        break;
    case glow::ColourPattern:
        picture = QPixmap(80, 80);
        picture.fill(QColor(foreColor.red(), foreColor.green(), foreColor.blue(), 255));
        record.solidColor = QColor(ui->Color_R->value(), ui->Color_G->value(), ui->Color_B->value(), 255);
        break;
    case glow::TextPattern:
        picture = textPixmap;
        break;
    default:
        picture = effectPixmap;
        break;
    }
    if (!picture.isNull()) {
        record.thumbnail = picture.scaledToHeight(85, Qt::SmoothTransformation);
    }
    return record;
}

void MainWindow::on_Add_Button_clicked()
{
    // A spin box that is being typed in commits when it loses the focus.
    ui->Add_Button->setFocus();
    const std::optional<glow::PatternRecord> record = editorPattern();
    if (!record.has_value()) {
        return;
    }
    const QByteArray blob = glow::writePattern(*record);
    // Each time field that changes below would render the preview again.
    ui->Mode_loop->blockSignals(true);
    TimelineItem *item = currentItem;
    if (ui->NEW_radio->isChecked()) {
        item = currentTimeline->place(blob);
        ui->Mode_t1->setTime(ui->Mode_t2->time());
        ui->Mode_t2->setTime(
            glow::timeOf(glow::msOf(ui->Mode_t1->time()) + glow::truncated(ui->Mode_last->value() * 1000)));
        ui->timeline_scroll->ensureWidgetVisible(item, 50, 50);
        ui->timeline_headers->indicator->setIndicatorTime(item->endTime, false);
    } else if (item != nullptr) {
        item->loadData(blob);
    }
    if (item != nullptr) {
        currentTimeline->on_itemDragEnd(blob, item, nullptr);
    }
    if (!currentTimeline->readyBand->isHidden()) {
        // Hidden first: what is shown already would hide.
        on_Addbutton_hovered(false);
        on_Addbutton_hovered(true);
    }
    ui->Mode_loop->blockSignals(false);
    updateStatus();
}

void MainWindow::on_actionEnter_triggered()
{
    on_Add_Button_clicked();
}
