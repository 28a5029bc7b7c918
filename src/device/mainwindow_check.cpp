// Check show: what the prop will not show of the current track as drawn.
#include "app/mainwindow.h"

#include "device/checkdialog.h"
#include "show/base/hint.h"
#include "show/image/projectshow.h"
#include "show/image/showcheck.h"
#include "show/model/projectfile.h"
#include "show/model/propvalues.h"
#include "show/model/showtime.h"
#include "ui_mainwindow.h"

void MainWindow::addCheck()
{
    ui->menu_4->addSeparator();
    QAction *check =
        ui->menu_4->addAction(glow::hint(QT_TRANSLATE_NOOP("Hints", "檢查光舞...")), this, &MainWindow::checkShow);
    check->setObjectName(QStringLiteral("actionCheck"));
    check->setStatusTip(glow::hint(QT_TRANSLATE_NOOP("Hints", "列出目前軌道中道具不會照畫面播放的地方")));
}

// As the command line does it: from the patterns' values, so that the check, unlike an export, changes nothing.
QVector<glow::Finding> MainWindow::checkTrack() const
{
    glow::Project project;
    project.ledCount = ledCount;
    project.frameRate = frameRate;
    project.tracks = {trackBlobs()};
    glow::ShowOptions options;
    options.slot = ui->prop_track->currentIndex() + 1;
    options.loop = ui->AutoRepeat->isChecked();
    options.startMarkMs = startMarkMs();
    const glow::DeviceShow show = glow::showOfTrack(project, 0, options);
    return glow::checkShow(show, glow::planImage(show));
}

void MainWindow::checkShow()
{
    auto *dialog = findChild<CheckDialog *>();
    if (dialog == nullptr) {
        dialog = new CheckDialog(this);
        connect(dialog, &CheckDialog::checkAgain, this, &MainWindow::checkShow);
        connect(dialog, &CheckDialog::placeChosen, this, &MainWindow::goTo);
    }
    dialog->setFindings(checkTrack(), isTrackEmpty());
    dialog->show();
    dialog->raise();
    dialog->activateWindow();
}

// The play-head goes there, as by a click on the ruler.
void MainWindow::goTo(int ms)
{
    seekClock(glow::timeOf(ms));
    keepHeadInView();
}
