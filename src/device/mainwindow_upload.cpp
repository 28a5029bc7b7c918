// The upload button, which starts an upload or cancels the running one, and what it shows of the thread's reports.
#include "app/mainwindow.h"

#include "device/workerthread.h"
#include "forms/boxes.h"
#include "forms/statusnotes.h"
#include "forms/timeleftlabel.h"
#include "show/base/hint.h"
#include "show/wire/portnames.h"
#include "ui_mainwindow.h"

#include <QMessageBox>

void MainWindow::on_UPload_Button_clicked()
{
    if (uploadThread != nullptr) {
        const WorkerThread *cancelled = uploadThread;
        emit Upload_Cancel_Clicked();
        timeLeft->end(TimeLeftLabel::Upload);
        ui->UPload_Button->setText(tr("上傳至道具"));
        ui->progressBar->setValue(0);
        QMessageBox::warning(this, tr("已取消上傳"), tr("已取消上傳"), QMessageBox::Ok, QMessageBox::NoButton);
        disconnect(this, nullptr, cancelled, nullptr);
        forgetProgress();
        uploadThread = nullptr; // the object lives on: its port and files are never closed
        return;
    }
    if (isTrackEmpty()) {
        QMessageBox::warning(this, tr("無可上傳圖樣"), tr("請選擇正確之時間軸"), QMessageBox::Ok,
                             QMessageBox::NoButton);
        return;
    }
    uploadThread = new WorkerThread;
    uploadThread->waitMs = propWaitMs;
    connect(uploadThread, &WorkerThread::progress, this, &MainWindow::mySlot);
    connect(uploadThread, &WorkerThread::expmess, this, &MainWindow::warnex);
    connect(uploadThread, &WorkerThread::finish, this, &MainWindow::finishup);
    connect(uploadThread, &WorkerThread::terminated, this, &MainWindow::terminateup);
    connect(this, &MainWindow::Upload_Cancel_Clicked, uploadThread, &WorkerThread::kill);
    ui->UPload_Button->setText(tr("轉檔中..."));
    buildDeviceImage();
    ui->UPload_Button->setText(tr("傳輸中..."));
    uploadThread->start(QThread::InheritPriority);
}

void MainWindow::on_actionUpload_triggered()
{
    on_UPload_Button_clicked();
}

// What a cancelled thread reported just before its end may still arrive: the window has taken its leave of it.
bool MainWindow::isCancelledUpload(const QObject *caller)
{
    const auto *thread = qobject_cast<const WorkerThread *>(caller);
    return thread != nullptr && thread->wasKilled();
}

void MainWindow::mySlot(int arg1, int arg2)
{
    if (isCancelledUpload(sender())) {
        return;
    }
    ui->statusBar->showMessage(glow::portLabel(arg2) + tr(" 輸出中 ") + QString::number(arg1) + QLatin1Char('%'));
    ui->progressBar->setValue(arg1);
    timeLeft->follow(TimeLeftLabel::Upload, arg1 / 100.0);
    update();
}

// The upload is over: what its progress said goes.
void MainWindow::forgetProgress()
{
    timeLeft->end(TimeLeftLabel::Upload);
    if (ui->statusBar->currentMessage().contains(tr(" 輸出中 "))) {
        glow::letGo(ui->statusBar);
    }
}

void MainWindow::warnex(const QString &str)
{
    if (isCancelledUpload(sender())) {
        return;
    }
    ui->GLWidget->setEnabled(true);
    allowExport(true);
    ui->UPload_Button->setText(tr("上傳至道具"));
    forgetProgress();
    const auto *thread = qobject_cast<const WorkerThread *>(sender());
    glow::tell(this, QMessageBox::Critical, QString(),
               QStringLiteral("<font color='white'>") + str + QStringLiteral("</font>"),
               thread != nullptr ? thread->mend : QString());
}

void MainWindow::finishup()
{
    if (isCancelledUpload(sender())) {
        return;
    }
    ui->GLWidget->setEnabled(true);
    allowExport(true);
    ui->UPload_Button->setText(tr("上傳至道具"));
    timeLeft->end(TimeLeftLabel::Upload);
    QMessageBox::about(this, tr("完成"), tr("上傳完成"));
    forgetProgress();
    uploadThread = nullptr;
}

void MainWindow::terminateup()
{
    if (isCancelledUpload(sender())) {
        return;
    }
    uploadThread = nullptr;
    forgetProgress();
    const auto *thread = qobject_cast<const WorkerThread *>(sender());
    if (thread != nullptr && !thread->complained) {
        // No box comes, and the button stays as it is.
        ui->statusBar->showMessage(
            glow::hint(QT_TRANSLATE_NOOP("Hints", "上傳沒有完成。%1")).arg(QString(thread->mend).replace(u'\n', u' ')));
    }
}
