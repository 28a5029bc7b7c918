// The current track as the prop's data: the two temporary files that an upload sends, and the ".bin" file.
#include "app/mainwindow.h"

#include "forms/statusnotes.h"
#include "forms/timeleftlabel.h"
#include "show/base/hint.h"
#include "show/base/startfolder.h"
#include "show/image/binfile.h"
#include "show/image/deviceimage.h"
#include "show/image/imagefiles.h"
#include "show/model/propvalues.h"
#include "show/model/timescale.h"
#include "ui_mainwindow.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QMessageBox>

QString MainWindow::buildDeviceImage()
{
    ui->GLWidget->setEnabled(false); // until the export or the upload has ended
    QFile frameData(glow::frameDataFile());
    QFile header(glow::headerFile());
    frameData.open(QIODevice::WriteOnly);
    header.open(QIODevice::WriteOnly);

    glow::DeviceShow show;
    show.ledCount = ledCount;
    show.frameRate = frameRate;
    show.ledsShown = ui->Leds->value();
    show.rateShown = ui->FPS_V->value();
    show.slot = ui->prop_track->currentIndex() + 1;
    show.loop = ui->AutoRepeat->isChecked();
    show.startMarkMs = startMarkMs();
    for (const glow::PatternRecord &pattern : sortedPatterns()) {
        show.patterns.append(glow::showPattern(pattern));
    }
    const glow::ImageSummary summary = glow::writeDeviceImage(show, frameData, header, [this](int percent) {
        ui->progressBar->setValue(percent);
        timeLeft->follow(TimeLeftLabel::Conversion, percent / 100.0);
        update();
    });
    timeLeft->end(TimeLeftLabel::Conversion);
    for (QFile *file : {&frameData, &header}) {
        if (!file->isOpen() || !file->flush()) {
            return file->errorString();
        }
    }
    // A write that a full disk cuts short counts as a success with Qt.
    const bool whole =
        frameData.size() == summary.frameBytes && header.size() == glow::imageHeader(show, summary.entries).size();
    return whole ? QString() : glow::hint(QT_TRANSLATE_NOOP("Hints", "磁碟已滿"));
}

void MainWindow::allowExport(bool allowed)
{
    ui->Ex_Button->setEnabled(allowed);
    ui->Ex_Button->setToolTip(
        allowed ? glow::hint(QT_TRANSLATE_NOOP("Hints", "將目前的軌道存成 .bin 檔"))
                : glow::hint(QT_TRANSLATE_NOOP("Hints", "先按一次「上傳至道具」，結束後（成功與否皆可）才能匯出")));
}

void MainWindow::tellOfExport(const QString &path, const QString &error)
{
    const QString shown = QDir::toNativeSeparators(path);
    ui->statusBar->showMessage(error.isEmpty()
                                   ? glow::hint(QT_TRANSLATE_NOOP("Hints", "已匯出：%1")).arg(shown)
                                   : glow::hint(QT_TRANSLATE_NOOP("Hints", "沒有匯出：%1（%2）")).arg(shown, error));
}

void MainWindow::on_Ex_Button_clicked()
{
    scanMissingPictures(); // for information: the export works from the thumbnails
    if (isTrackEmpty()) {
        // Nothing to pack; the same answer as an upload's.
        QMessageBox::warning(this, tr("無可上傳圖樣"), tr("請選擇正確之時間軸"), QMessageBox::Ok,
                             QMessageBox::NoButton);
        return;
    }
    QString path = QFileDialog::getSaveFileName(this, tr("匯出"),
                                                glow::startForSaving(QDir::homePath() + QStringLiteral("/Documents")),
                                                QStringLiteral("*.bin"));
    if (path.isEmpty()) {
        return;
    }
    if (!path.contains(QLatin1String(".bin"))) {
        path += QLatin1String(".bin");
    }
    allowExport(false);
    QString error = buildDeviceImage();
    currentFile = path;
    {
        QFile out(path);
        QFile header(glow::headerFile());
        QFile frameData(glow::frameDataFile());
        out.open(QIODevice::WriteOnly);
        header.open(QIODevice::ReadOnly);
        frameData.open(QIODevice::ReadOnly);
        glow::writeBin(header, frameData, out, [this](int percent) {
            ui->progressBar->setValue(percent);
            timeLeft->follow(TimeLeftLabel::Packing, percent / 100.0);
        });
        timeLeft->end(TimeLeftLabel::Packing);
        for (QFile *file : {&header, &frameData, &out}) {
            if (error.isEmpty() && (!file->isOpen() || !file->flush() || file->error() != QFileDevice::NoError)) {
                error = file->errorString();
            }
        }
    }
    tellOfExport(path, error);
    allowExport(true);
    ui->GLWidget->setEnabled(true);
    ui->progressBar->setValue(100);
    ui->UPload_Button->setText(tr("上傳至道具"));
    QMessageBox::about(this, tr("完成"), tr("上傳完成"));
    uploadThread = nullptr;
}
