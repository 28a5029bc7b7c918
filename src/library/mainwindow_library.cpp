// The source pictures of the show: finding those that moved, gathering them in one folder. And the about box.
#include "app/mainwindow.h"

#include "app/settingstext.h"
#include "library/about.h"
#include "library/missingpictures.h"
#include "timeline/timeline.h"
#include "timeline/timelineitem.h"
#include "ui_about.h"

#include <QDebug>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>

namespace {

QVector<TimelineItem *> allItems(const MainWindow &window)
{
    QVector<TimelineItem *> items;
    for (const Timeline *track : window.timelines) {
        for (TimelineItem *item : track->items) {
            items.append(item);
        }
    }
    return items;
}

// picPath often names a file; a directory dialog that starts with a file chosen could not be accepted.
QString startDirectory(const QString &picPath)
{
    const QFileInfo info(picPath);
    return info.isFile() ? info.absolutePath() : picPath;
}

} // namespace

int MainWindow::scanMissingPictures()
{
    int lost = 0;
    for (const TimelineItem *item : allItems(*this)) {
        lost += glow::isPictureLost(item->settingsText) ? 1 : 0;
    }
    if (lost == 0) {
        return 1;
    }
    const auto answer =
        QMessageBox::warning(this, tr("圖片遺失"), QString::number(lost) + tr("張圖片遺失，是否搜尋並取代遺失圖片？"),
                             QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes);
    if (answer == QMessageBox::Yes) {
        on_actionDIR_triggered();
    }
    return 0;
}

void MainWindow::on_actionDIR_triggered()
{
    const QString directory = QFileDialog::getExistingDirectory(this, tr("圖片位置"), startDirectory(picPath),
                                                                QFileDialog::DontUseNativeDialog);
    if (directory.isEmpty()) {
        return;
    }
    for (TimelineItem *item : allItems(*this)) {
        if (!glow::isPictureLost(item->settingsText)) {
            continue;
        }
        const QString found = glow::findPicture(directory, glow::lostPictureName(item->settingsText));
        if (!found.isEmpty()) {
            item->settingsText = glow::withPicturePath(item->settingsText, found);
            qDebug() << glow::parseSettings(item->settingsText).fields;
            item->updateData();
        }
    }
    scanMissingPictures();
    updateStatus();
}

void MainWindow::askForLostPicture()
{
    const auto answer = QMessageBox::warning(this, tr("圖片遺失"), tr("圖片遺失，是否替換遺失圖片？"),
                                             QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes);
    if (answer != QMessageBox::Yes) {
        return;
    }
    const QString path = QFileDialog::getOpenFileName(
        this, tr("取代圖片"), picPath, QStringLiteral("Support files(*.jpg *.bmp *.png *.gif);;All files(*.*)"));
    if (!path.isEmpty()) {
        picload(path);
    }
}

void MainWindow::on_actionSQL_triggered()
{
    const QString directory =
        QFileDialog::getExistingDirectory(this, tr("圖片儲存位置"), startDirectory(picPath), QFileDialog::Options());
    if (directory.isEmpty()) {
        return;
    }
    for (const TimelineItem *item : allItems(*this)) {
        if (glow::namesPicture(item->settingsText)) {
            glow::copyPicture(glow::parseSettings(item->settingsText).picturePath(), directory);
        }
    }
    QMessageBox::about(this, QString(), tr("圖庫匯出完成"));
}

void MainWindow::on_actionAbout_triggered()
{
    about dialog;
    dialog.ui->Load_frame->hide();
    dialog.exec();
}
