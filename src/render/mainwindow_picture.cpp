// The picture tab: files and screen captures become the picture of a pattern.
#include "app/mainwindow.h"

#include "forms/statusnotes.h"
#include "render/desktopgrab.h"
#include "render/patternview.h"
#include "render/screencapture.h"
#include "show/base/appsettings.h"
#include "show/base/hint.h"
#include "show/base/startfolder.h"
#include "show/draw/picturechain.h"
#include "show/model/propvalues.h"
#include "ui_mainwindow.h"

#include <QDir>
#include <QDockWidget>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QStatusBar>

#include <utility>

void MainWindow::picload(QString path)
{
    if (!QFile::exists(path)) {
        return;
    }
    ui->PicDir->setEnabled(true);
    // The store stays one picture behind.
    AppSettings().setValue(AppSettings::pictureKey, picPath);
    picPath = std::move(path);
    ui->PicView->setEnabled(true);
    if (ui->NEW_radio->isChecked()) {
        ui->Add_Button->setEnabled(true);
    }
    ui->PicDir->setText(picPath);

    glow::PictureOptions options;
    options.flipH = ui->Pic_revH->isChecked();
    options.flipV = ui->Pic_revV->isChecked();
    options.gap = ui->Pic_Slide->value();
    options.leds = ledCount;
    const glow::PictureResult result = glow::loadPicture(picPath, options);
    const QString complaint = glow::hint(QT_TRANSLATE_NOOP("Hints", "無法讀取圖片："));
    glow::retract(statusBar(), tr("圖片尺寸過大，無法使用："));
    glow::retract(statusBar(), complaint);
    if (result.image.isNull() && ledCount > 0) {
        statusBar()->showMessage((result.tooBig ? tr("圖片尺寸過大，無法使用：") : complaint) +
                                 QFileInfo(picPath).fileName());
    }
    patternWidth = result.columns;
    pictureWidth = result.columns;
    showPicturePixmap(QPixmap::fromImage(result.image));
}

void MainWindow::showPicturePixmap(const QPixmap &pixmap)
{
    picturePixmap = pixmap;
    ui->Mode_loop->blockSignals(true);
    ui->suggest->setValue(suggestRepeat());
    ui->Mode_loop->blockSignals(false);
    previewInEditor(picturePixmap);
    glow::showPattern(*ui->PicView, picturePixmap);
}

void MainWindow::on_Pic_Loads_clicked()
{
    if (picPath.isEmpty()) {
        picPath = QDir::homePath() + QStringLiteral("/Pictures");
    }
    const QStringList files =
        QFileDialog::getOpenFileNames(this, tr("讀圖(可複選)"), glow::startForOpening(picPath),
                                      QStringLiteral("Support files(*.jpg *.bmp *.png *.gif);;All files(*.*)"));
    if (files.size() == 1) {
        picload(files.first());
        return;
    }
    int number = 0;
    QStringList unusable;
    for (const QString &file : files) {
        picload(file);
        if (picturePixmap.isNull()) {
            unusable.append(QFileInfo(file).fileName());
        }
        on_Add_Button_clicked();
        ++number;
        statusBar()->showMessage(tr("圖片讀取") + QString::number(number) + QLatin1Char('/') +
                                 QString::number(files.size()));
        repaint();
    }
    if (number > 0) {
        statusBar()->showMessage(tr("圖片讀取完成!!"));
        glow::letGo(statusBar());
        if (!unusable.isEmpty()) {
            statusBar()->showMessage(
                tr("圖片讀取完成!!") + u' ' +
                glow::hint(QT_TRANSLATE_NOOP("Hints", "無法使用的圖片：%1")).arg(unusable.join(QStringLiteral(", "))));
        }
        ui->Add_Button->setEnabled(true);
    }
}

// The window has to be gone before the tool grabs the screen. A window manager keeps a corner of a moved window in
// sight and does not move a maximised one at all, so it is hidden as well; hidden it must not count as closed. A
// floating panel is a window of its own, which stays when this one goes.
void MainWindow::on_Pic_Capture_clicked()
{
    const QRect before = geometry();
    const bool moves = (windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen)) == 0;
    const bool quits = QGuiApplication::quitOnLastWindowClosed();
    QGuiApplication::setQuitOnLastWindowClosed(false);
    if (moves) {
        setGeometry(-width(), 0, 0, 0);
    }
    QList<QDockWidget *> panels;
    for (QDockWidget *panel : findChildren<QDockWidget *>()) {
        if (panel->isFloating() && panel->isVisible()) {
            panels.append(panel);
            panel->hide();
        }
    }
    hide();
    glow::letDesktopSettle();
    {
        ScreenCapture capture(this);
        connect(&capture, &ScreenCapture::callback, this, &MainWindow::picload);
        capture.exec();
    }
    show();
    if (moves) {
        setGeometry(before);
    }
    for (QDockWidget *panel : qAsConst(panels)) {
        panel->show();
    }
    QGuiApplication::setQuitOnLastWindowClosed(quits);
}

void MainWindow::on_Pic_Slide_valueChanged(int value)
{
    patternWidth = glow::columnsWithGap(pictureWidth, value);
    showPicturePixmap(QPixmap::fromImage(glow::withGap(picturePixmap.toImage(), patternWidth, ledCount)));
}

void MainWindow::on_Pic_revH_clicked(bool checked)
{
    Q_UNUSED(checked)
    picload(ui->PicDir->text());
}

void MainWindow::on_Pic_revV_clicked(bool checked)
{
    Q_UNUSED(checked)
    picload(ui->PicDir->text());
}
