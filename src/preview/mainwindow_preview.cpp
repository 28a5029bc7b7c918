// The window's ways to the preview: every pattern source ends here.
#include "app/mainwindow.h"
#include "app/propvalues.h"
#include "preview/mygl.h"
#include "timeline/timelineitem.h"
#include "timeline/timescale.h"
#include "ui_mainwindow.h"

#include <QPixmap>

namespace {

QPixmap filled(const QColor &color)
{
    QPixmap pixmap(80, 80);
    pixmap.fill(color);
    return pixmap;
}

} // namespace

void MainWindow::Oviewer_change(int r, int g, int b)
{
    previewInEditor(filled(QColor(r, g, b, 255)));
}

void MainWindow::Oviewer_change()
{
    previewInEditor(filled(foreColor));
}

void MainWindow::glpreview_change(bool on, const QPixmap &pixmap, short leds, int fps, double seconds, int repeats)
{
    Q_UNUSED(on)
    ui->GLWidget->setPattern(pixmap, leds, fps, seconds, repeats);
}

void MainWindow::previewInEditor(const QPixmap &pixmap)
{
    ui->GLWidget->setPattern(pixmap, static_cast<short>(ui->Leds->value()), glow::truncated(frameRate),
                             ui->Mode_last->value(), ui->Mode_loop->value());
}

void MainWindow::previewPattern(const TimelineItem *item, double seconds)
{
    if (item == nullptr) {
        Oviewer_change(0, 0, 0);
        return;
    }
    ui->GLWidget->setPattern(item->thumbnail, static_cast<short>(ui->Leds->value()), glow::truncated(frameRate),
                             seconds, item->repeatCount);
}

void MainWindow::on_Oview_slide_valueChanged(int value)
{
    ui->static_checkbox->setChecked(value == 0);
    ui->GLWidget->setSpinSpeed(value);
}

void MainWindow::on_static_checkbox_toggled(bool checked)
{
    ui->GLWidget->setSpinSpeed(checked ? 0 : ui->Oview_slide->value());
}
