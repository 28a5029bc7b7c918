// The source pictures of the show: finding those that moved, gathering them in one folder. And the about box.
#include "app/mainwindow.h"

#include "library/about.h"
#include "show/base/startfolder.h"
#include "show/model/missingpictures.h"
#include "show/model/settingstext.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>

#include <algorithm>

namespace {

// picPath often names a file; a directory dialog that starts with a file chosen could not be accepted.
QString startDirectory(const QString &picPath)
{
    const QString start = glow::startForOpening(picPath);
    const QFileInfo info(start);
    return info.isFile() ? info.absolutePath() : start;
}

} // namespace

int MainWindow::scanMissingPictures()
{
    const QStringList settings = settingsTexts();
    const auto lost = std::count_if(settings.cbegin(), settings.cend(), glow::isPictureLost);
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
    rewriteSettings([&directory](const QString &settings) {
        const bool lost = glow::isPictureLost(settings);
        const QString found = lost ? glow::findPicture(directory, glow::lostPictureName(settings)) : QString();
        return found.isEmpty() ? settings : glow::withPicturePath(settings, found);
    });
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
    const QString path =
        QFileDialog::getOpenFileName(this, tr("取代圖片"), glow::startForOpening(picPath),
                                     QStringLiteral("Support files(*.jpg *.bmp *.png *.gif);;All files(*.*)"));
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
    const QStringList all = settingsTexts();
    for (const QString &settings : all) {
        if (const std::optional<QString> path = glow::sourcePicture(settings)) {
            glow::copyPicture(*path, directory);
        }
    }
    QMessageBox::about(this, QString(), tr("圖庫匯出完成"));
}

void MainWindow::on_actionAbout_triggered()
{
    about::showAsAboutBox();
}
