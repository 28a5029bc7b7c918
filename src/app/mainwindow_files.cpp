// The document as a whole: new, load, files dropped on the window, the language for the next start.
#include "app/mainwindow.h"

#include "app/windowtitle.h"
#include "forms/hints.h"
#include "show/base/appsettings.h"
#include "show/base/startfolder.h"
#include "timeline/gesture.h"
#include "timeline/mylabel.h"
#include "timeline/timeline.h"
#include "ui_mainwindow.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QMessageBox>
#include <QMimeData>
#include <QUrl>

namespace {

// What the status line says of files that were dropped together with the one that was taken.
QString unusedFiles(const QList<QUrl> &urls)
{
    QStringList names;
    for (const QUrl &url : urls) {
        names.append(url.fileName());
    }
    return glow::hint(QT_TRANSLATE_NOOP("Hints", "只用了第一個檔案，未使用：%1")).arg(names.join(QStringLiteral("、")));
}

} // namespace

void MainWindow::discardTracks()
{
    // Tracks that were removed earlier are still there, hidden; they go as well.
    const auto tracks = findChildren<Timeline *>();
    for (Timeline *track : tracks) {
        track->hide();
        track->disconnect(this); // a gesture that is under way on it may still say something
        ui->timeline_layout->removeWidget(track);
        glow::Gesture::deleteAfterwards(track);
    }
    const auto labels = findChildren<MyLabel *>();
    for (MyLabel *label : labels) {
        label->hide();
        ui->timeline_rowheader_layout->removeWidget(label);
        glow::Gesture::deleteAfterwards(label);
    }
    timelines.clear();
    currentTimeline = nullptr;
    currentItem = nullptr;
    previewItem = nullptr;
}

void MainWindow::resetDocument()
{
    discardTracks();
    // The snapshots name what was just given up.
    history.clear();
    on_timeline_add_clicked();
    ui->NEW_radio->toggle();
    ui->NEW_radio->setChecked(true);
    ui->Mode_t1->setTime(QTime(0, 0));
    ui->Mode_t2->setTime(QTime(0, 0, 5));
}

bool MainWindow::on_actionNew_triggered()
{
    const auto answer =
        QMessageBox::warning(this, QString(), tr("<font color='white'>未儲存部分將會流失，確定開啟新檔?</font>"),
                             QMessageBox::Yes | QMessageBox::Cancel, QMessageBox::Cancel);
    const bool renewed = answer == QMessageBox::Yes;
    if (renewed) {
        resetDocument();
        setWindowTitle(glow::bareTitle());
        emit showIsReplaced();
    }
    // Also after Cancel the show has no file and no past any more.
    hasFile = false;
    history.clear();
    updateStatus();
    return renewed;
}

bool MainWindow::mayReplaceShow()
{
    return QMessageBox::warning(this, QString(), tr("<font color='white'>未儲存部分將會流失，確定讀取舊檔?</font>"),
                                QMessageBox::Yes | QMessageBox::Cancel, QMessageBox::Yes) == QMessageBox::Yes;
}

void MainWindow::on_actionLoad_triggered()
{
    if (!mayReplaceShow()) {
        return;
    }
    const QString path = QFileDialog::getOpenFileName(this, tr("讀檔"), glow::startForOpening(currentFile),
                                                      QStringLiteral("*.gsw *.gsw3"));
    if (!path.isEmpty()) {
        LoadFile(path);
    }
}

void MainWindow::on_actionChinese_triggered()
{
    QMessageBox::about(this, QString(), QStringLiteral("重啟程式後生效"));
    AppSettings().setValue(AppSettings::languageKey, AppSettings::Chinese);
}

void MainWindow::on_actionEnglish_triggered()
{
    QMessageBox::about(this, QString(), QStringLiteral("Change after restart."));
    AppSettings().setValue(AppSettings::languageKey, AppSettings::English);
}

void MainWindow::on_actionCompleteEnglish_triggered()
{
    QMessageBox::about(this, QString(), QStringLiteral("Change after restart."));
    AppSettings().setValue(AppSettings::languageKey, AppSettings::CompleteEnglish);
}

void MainWindow::dragEnterEvent(QDragEnterEvent *event)
{
    if (event->mimeData()->hasFormat(QStringLiteral("text/uri-list"))) {
        event->acceptProposedAction();
    }
}

void MainWindow::dropEvent(QDropEvent *event)
{
    const QList<QUrl> dropped = event->mimeData()->urls();
    const QString path = dropped.value(0).toLocalFile();
    if (path.isEmpty()) {
        return;
    }
    ui->statusBar->clearMessage();
    takeDropped(path);
    if (dropped.size() > 1) {
        // Behind what the first file has to say.
        const QString said = ui->statusBar->currentMessage();
        ui->statusBar->showMessage((said.isEmpty() ? said : said + QStringLiteral("　")) + unusedFiles(dropped.mid(1)));
    }
}

void MainWindow::takeDropped(const QString &path)
{
    const QString suffix = path.section(u'.', -1);
    if (suffix == QLatin1String("gsw") || suffix == QLatin1String("gsw3")) {
        if (on_actionNew_triggered()) {
            LoadFile(path);
            scanMissingPictures();
        }
    } else if (suffix == QLatin1String("mp3") || suffix == QLatin1String("wav")) {
        ReadSong(path);
    } else if (suffix == QLatin1String("jpg") || suffix == QLatin1String("png")) {
        picload(path);
        ui->Mode_Pic->setCurrentIndex(0);
    } else {
        QMessageBox::warning(this, QString(), tr("無法辨識的副檔名 .") + suffix, QMessageBox::Ok);
    }
}
