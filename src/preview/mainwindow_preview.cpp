// The window's ways to the preview: every pattern source ends here.
#include "app/mainwindow.h"
#include "preview/mygl.h"
#include "show/base/numbers.h"
#include "show/model/propvalues.h"
#include "ui_mainwindow.h"

#include <QPixmap>

#include <cmath>

namespace {

QPixmap filled(const QColor &color)
{
    QPixmap pixmap(80, 80);
    pixmap.fill(color);
    return pixmap;
}

// The step that belongs to a share of a pattern. A pattern without a length has no share; that is its beginning.
qint64 stepAt(float share, qint32 columns, qint32 repeats)
{
    const float step = static_cast<float>(columns) * share * static_cast<float>(repeats);
    constexpr float beyond = 9.2e18F;
    return std::isfinite(step) && std::fabs(step) < beyond ? static_cast<qint64>(step) : 0;
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

void MainWindow::previewPattern(const glow::PatternRecord &pattern, double seconds)
{
    ui->GLWidget->setPattern(pattern.thumbnail, static_cast<short>(ui->Leds->value()), glow::truncated(frameRate),
                             seconds, pattern.repeatCount);
}

void MainWindow::seekPreview(float share)
{
    ui->GLWidget->stepCount = stepAt(share, ui->GLWidget->columnCount, ui->GLWidget->patternRepeats);
    ui->GLWidget->stepOrigin = 0;
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
