// The show in a file: save, save as, and opening in both formats.
#include "app/mainwindow.h"

#include "app/recovery.h"
#include "app/windowtitle.h"
#include "forms/statusnotes.h"
#include "forms/timeleftlabel.h"
#include "show/base/appsettings.h"
#include "show/base/hint.h"
#include "show/base/startfolder.h"
#include "show/base/wholefile.h"
#include "show/model/oldproject.h"
#include "show/model/projectfile.h"
#include "show/model/propvalues.h"
#include "show/model/recentprojects.h"
#include "song/chartview.h"
#include "timeline/timeline.h"
#include "timeline/timelineitem.h"
#include "ui_mainwindow.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QProgressDialog>

#include <algorithm>
#include <utility>

using glow::hint;

namespace {

// Qt calls a widget hidden as well that nobody has shown yet, such as a track that was only just added.
bool wasHidden(const Timeline &track)
{
    return track.isHidden() && track.testAttribute(Qt::WA_WState_ExplicitShowHide);
}

// No show has so many tracks, but a damaged file can hold one in every four bytes, and the window's cost grows with the
// square of its rows: this many take some seconds.
constexpr int mostTracks = 1000;

// A blob too short for a pattern stands as a pattern without picture and length. A damaged file can hold one in every
// four bytes, all in one place, where the next sort keeps a single one: this many are shown.
constexpr int mostEmptyPatterns = 1000;

// Tracks are made as the "+" button makes them, beside the current one: the first of the file stays first, all others
// end up behind it in the reverse of their file order.
void placeTracks(MainWindow &window, const glow::Project &project)
{
    int all = 0;
    for (const QVector<QByteArray> &track : project.tracks) {
        all += track.size();
    }
    int empty = 0;
    int done = 0;
    for (int i = 0; i < qMin(project.tracks.size(), mostTracks); ++i) {
        if (i > 0) {
            window.on_timeline_add_clicked();
        }
        for (const QByteArray &blob : project.tracks.at(i)) {
            empty += blob.size() < glow::shortestPattern ? 1 : 0;
            if (blob.size() >= glow::shortestPattern || empty <= mostEmptyPatterns) {
                window.currentTimeline->place(blob);
            }
            window.timeLeft->follow(TimeLeftLabel::Opening, double(++done) / all);
        }
    }
    window.timeLeft->end(TimeLeftLabel::Opening);
}

} // namespace

// A hidden track is left out with its separator; if the last one is hidden, the separator before it stands and reads as
// an empty track.
glow::Project MainWindow::asProject(const std::function<void(int)> &progress) const
{
    glow::Project project;
    project.ledCount = ledCount;
    project.frameRate = frameRate;
    if (audioDecoder != nullptr) {
        project.songPath = audioDecoder->sourceFilename();
    }
    for (const Timeline *track : timelines) {
        if (wasHidden(*track)) {
            continue;
        }
        QVector<QByteArray> blobs;
        for (int i = 0; i < track->items.size(); ++i) {
            blobs.append(track->items.at(i)->itemData);
            if (progress) {
                progress(i);
            }
        }
        project.tracks.append(blobs);
    }
    if (!project.tracks.isEmpty() && wasHidden(*timelines.last())) {
        project.tracks.append(QVector<QByteArray>());
    }
    return project;
}

void MainWindow::on_actionSave_triggered()
{
    if (!hasFile) {
        on_actionSaveas_triggered();
        return;
    }
    QProgressDialog progress(tr("儲存中..."), tr("取消"), 0, currentTimeline->items.size() - 1, this);
    progress.setWindowTitle(tr("存檔"));
    progress.setAutoClose(true);
    progress.show();
    const glow::WriteResult result = glow::writeWholeFile(
        currentFile, glow::writeProject(asProject([&progress](int index) { progress.setValue(index); })));
    progress.hide();
    tellOfSave(result);
    switch (result.state) {
    case glow::WriteResult::Written:
        // This is what takes the "*" away, so not before the show is safe.
        setWindowTitle(glow::titleOfProject(currentFile));
        AppSettings().setValue(AppSettings::projectKey, currentFile);
        // A name that opens as something else is no safe place.
        if (glow::isProjectPath(currentFile)) {
            glow::rememberProject(currentFile);
            emit showIsSafe();
        } else {
            emit showIsMisfiled();
        }
        break;
    case glow::WriteResult::NotOpened:
        break;
    case glow::WriteResult::Failed:
        QMessageBox::warning(this, tr("存檔失敗"),
                             tr("無法寫入 %1\n%2\n原有檔案未變動，請另存新檔。").arg(currentFile, result.error),
                             QMessageBox::Ok);
        break;
    }
}

void MainWindow::tellOfSave(const glow::WriteResult &result)
{
    const QString name = currentFile.section(u'/', -1);
    if (result.state != glow::WriteResult::Written) {
        ui->statusBar->showMessage(hint(QT_TRANSLATE_NOOP("Hints", "沒有存檔：%1（%2）"))
                                       .arg(QDir::toNativeSeparators(currentFile), result.error));
    } else if (glow::isProjectPath(currentFile)) {
        glow::note(ui->statusBar, hint(QT_TRANSLATE_NOOP("Hints", "已存檔：%1")).arg(name));
    } else {
        // It stands until the next message: there is something to be done.
        ui->statusBar->showMessage(
            hint(QT_TRANSLATE_NOOP(
                     "Hints", "光舞存到了 %1，這個檔名無法再當專案開啟：請用「另存新檔」（Ctrl+Shift+S）存成 .gsw3"))
                .arg(QDir::toNativeSeparators(currentFile)));
    }
}

void MainWindow::on_actionSaveas_triggered()
{
    QString path = QFileDialog::getSaveFileName(
        this, tr("存檔"),
        glow::startForSaving(currentFile.isEmpty() ? QDir::homePath() + QStringLiteral("/Documents") : currentFile),
        QStringLiteral("*.gsw3"));
    if (path.isEmpty()) {
        return;
    }
    if (!glow::isProjectPath(path)) {
        path += QStringLiteral(".gsw3");
    }
    currentFile = path;
    hasFile = true;
    on_actionSave_triggered();
}

void MainWindow::LoadFile(QString path)
{
    ui->statusBar->clearMessage(); // it was about the show that goes
    resetDocument();
    closeSong();
    picPath = path;
    currentFile = std::move(path);
    const QString name = currentFile.contains(u'/') ? currentFile : currentFile.section(u'\\', -1);
    setWindowTitle(glow::titleOfProject(name));

    const bool binary = glow::isProjectPath(currentFile);
    if (!binary) {
        qDebug() << "OPEN OLD FILE";
    }
    const std::optional<QByteArray> bytes = glow::readWholeFile(currentFile);
    if (bytes.has_value()) {
        hasFile = true;
        glow::rememberProject(currentFile);
        if (binary) {
            openProject(glow::readProject(*bytes));
        } else {
            openOldProject(*bytes);
        }
        on_timeline_scaler_valueChanged(ui->timeline_scaler->value());
        scanMissingPictures();
    }
    // The steps of opening are no changes of the show: none can be undone, and none leaves its mark in the title.
    setWindowTitle(glow::titleOfProject(name));
    history.clear();
    updateStatus();
    tellOfOpening(bytes);
    emit showIsReplaced();
}

// Nothing of a file that opens as it should.
void MainWindow::tellOfOpening(const std::optional<QByteArray> &bytes)
{
    const QString path = QDir::toNativeSeparators(currentFile);
    if (!bytes.has_value()) {
        ui->statusBar->showMessage(QFileInfo::exists(currentFile)
                                       ? hint(QT_TRANSLATE_NOOP("Hints", "無法讀取：%1")).arg(path)
                                       : hint(QT_TRANSLATE_NOOP("Hints", "檔案不存在：%1")).arg(path));
    } else if (!glow::isProjectPath(currentFile) && glow::looksLikeProject(*bytes)) {
        ui->statusBar->showMessage(
            hint(
                QT_TRANSLATE_NOOP("Hints", "%1 裡是 .gsw3 專案，卻因檔名被當成舊文字檔讀取：請將檔名改為 .gsw3 再開啟"))
                .arg(path));
    }
}

Recovery *MainWindow::keepUnsaved(std::unique_ptr<glow::RecoveryStore> store)
{
    const auto openShow = [this] { return Recovery::OpenShow{asProject(), currentFile, hasFile}; };
    auto *recovery = new Recovery(openShow, std::move(store), this);
    connect(this, &MainWindow::showIsSafe, recovery, &Recovery::showIsSafe);
    connect(this, &MainWindow::showIsMisfiled, recovery, &Recovery::showIsMisfiled);
    connect(this, &MainWindow::showIsReplaced, recovery, &Recovery::showIsReplaced);
    connect(this, &MainWindow::showIsLeft, recovery, &Recovery::showIsLeft);
    connect(this, &MainWindow::showIsGivenUp, recovery, &Recovery::discard);
    return recovery;
}

void MainWindow::restoreShow(const glow::UnsavedShow &show)
{
    resetDocument();
    closeSong();
    hasFile = show.hasFile;
    glow::Project project = glow::readProject(show.project);
    if (!project.tracks.isEmpty()) {
        // Placing turns the order of all tracks but the first around; the performer's own order is to come back.
        std::reverse(project.tracks.begin() + 1, project.tracks.end());
    }
    openProject(project); // a show that is not read whole no longer has its file
    currentFile = show.file;
    on_timeline_scaler_valueChanged(ui->timeline_scaler->value());
    scanMissingPictures();
    history.clear();
    updateStatus();
    // Without a file, not that of a project from the command line.
    setWindowTitle(hasFile ? glow::changedTitle(glow::titleOfProject(currentFile)) : glow::bareTitle());
}

void MainWindow::closeSong()
{
    if (audioDecoder == nullptr) {
        return;
    }
    player->stop();
    player->setMedia(QMediaContent());
    endDecode();
    audioDecoder->deleteLater();
    audioDecoder = nullptr;
    waveSamples.clear();
    chartView->wavePoints.clear();
    chartView->hide();
    ui->Song_dir->clear();
    ui->Song_dir->setToolTip(QString());
}

void MainWindow::openProject(const glow::Project &project)
{
    if (project.hasSong()) {
        ReadSong(project.songPath);
    }
    applyLoadedGadget(project.ledCount, project.frameRate, true);
    placeTracks(*this, project);
    if (project.tracks.size() > mostTracks) {
        // What is not shown must not be lost by a save into the same file.
        hasFile = false;
        QMessageBox::warning(this, tr("讀檔"), tr("檔案的軌道過多，只讀入前 %1 軌").arg(mostTracks), QMessageBox::Ok);
    }
}

void MainWindow::openOldProject(const QByteArray &bytes)
{
    const glow::OldProject project = glow::readOldProject(bytes);
    if (project.hasProp) {
        applyLoadedGadget(project.leds, static_cast<float>(project.rate), false);
        qDebug() << "gadget loaded";
    }
    int done = 0;
    for (const glow::OldPattern &pattern : project.patterns) {
        timeLeft->follow(TimeLeftLabel::Opening, double(done++) / project.patterns.size());
        ui->Mode_t1->setTime(pattern.start);
        ui->Mode_t2->setTime(pattern.end);
        showInPanel(pattern.settings, Origin::OldFile);
        const auto *picture = std::get_if<glow::PictureSettings>(&pattern.settings);
        if (picture != nullptr && !QFile::exists(picture->path)) {
            // What an earlier line left must not stand for the lost picture. Without one nothing is added below.
            picturePixmap = QPixmap();
        }
        if (pattern.repeats.has_value()) {
            ui->Mode_loop->setValue(*pattern.repeats);
            ui->radio_speed_m->setChecked(true);
        }
        ui->NEW_radio->setChecked(true);
        on_Add_Button_clicked();
    }
    timeLeft->end(TimeLeftLabel::Opening);
}
