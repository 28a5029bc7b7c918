#include "render/screencapture.h"

#include "forms/hints.h"
#include "render/desktopgrab.h"
#include "ui_screencapture.h"

#include <QColorDialog>
#include <QDebug>
#include <QDir>
#include <QFileDialog>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QScreen>
#include <QStandardPaths>

#include <algorithm>

namespace {

constexpr int mostCorrections = 3;

// Where the save dialog starts: "pictures" in the home directory, or a folder that exists.
QString captureStartPath()
{
    QString folder = QDir::homePath() + QStringLiteral("/pictures");
    if (!QDir(folder).exists()) {
        folder = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    }
    if (folder.isEmpty() || !QDir(folder).exists()) {
        folder = QDir::homePath();
    }
    return folder + QStringLiteral("/capture.png");
}

// From one point to the other, both included, whichever lies first.
QRect spanned(const QPoint &a, const QPoint &b)
{
    return {QPoint(std::min(a.x(), b.x()), std::min(a.y(), b.y())),
            QPoint(std::max(a.x(), b.x()), std::max(a.y(), b.y()))};
}

} // namespace

ScreenCapture::ScreenCapture(QWidget *parent)
    : QDialog(parent)
    , ui(new Ui::ScreenCapture)
{
    ui->setupUi(this);
    glow::addHints(this);
    setMouseTracking(true); // the dot follows the pointer with no button held
    // exec() finds the dialog on the screen already, where it is too late to become modal.
    setModal(true);

    // Grabbed before the dialog stands, or it could be in its own picture.
    shoot();
    overlayImage = QImage(screenImage.size(), QImage::Format_ARGB32);
    overlayImage.setDevicePixelRatio(screenImage.devicePixelRatio());
    overlayImage.fill(0);
    overlayPainter.begin(&overlayImage);
    coverDesktop();

    // Floating hides and shows the dock once more, so only afterwards does its hiding mean the end.
    QDockWidget *dock = ui->dockWidget;
    dock->setFloating(true);
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    dock->move(screen.center().x() - dock->width() / 2, screen.top() + 30);
    dock->raise();
    connect(dock, &QDockWidget::visibilityChanged, this, [this](bool visible) {
        if (!visible) {
            close();
        }
    });
}

ScreenCapture::~ScreenCapture()
{
    disconnect(ui->dockWidget, nullptr, this, nullptr);
    delete ui;
}

// A window manager makes the dialog full-screen on one screen; several are covered by a frameless window instead, and
// without a window manager only the geometry counts.
void ScreenCapture::coverDesktop()
{
    if (QGuiApplication::screens().size() > 1) {
        setWindowFlag(Qt::FramelessWindowHint);
        setGeometry(glow::desktopGeometry());
        show();
    } else {
        setGeometry(glow::desktopGeometry());
        showFullScreen();
    }
}

// A window manager can map a window as large as several screens elsewhere; asked again, it puts it back. A stubborn one
// is not fought for ever.
void ScreenCapture::moveEvent(QMoveEvent * /*e*/)
{
    const QRect desktop = glow::desktopGeometry();
    if (isVisible() && !isFullScreen() && pos() != desktop.topLeft() && corrections < mostCorrections) {
        ++corrections;
        setGeometry(desktop);
    }
}

void ScreenCapture::shoot()
{
    screenImage = glow::grabDesktop();
    veiledImage = screenImage;
    veilPainter.begin(&veiledImage);
    veilPainter.fillRect(veiledImage.rect(), QColor(255, 255, 255, 150));
    veilPainter.end();
    setBackground(veiledImage);
}

void ScreenCapture::setBackground(const QImage &frame)
{
    QPalette shown = palette();
    shown.setBrush(backgroundRole(), QBrush(frame));
    setPalette(shown);
}

void ScreenCapture::showDrawing()
{
    QImage frame = veiledImage;
    QPainter painter(&frame);
    painter.drawImage(0, 0, overlayImage);
    painter.end();
    setBackground(frame);
}

QPen ScreenCapture::drawingPen() const
{
    const QColor colour = penColor.isValid() ? penColor : QColor(Qt::black);
    return {QBrush(colour), static_cast<qreal>(ui->PenSize->value()), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin};
}

void ScreenCapture::prepareOverlayPainter()
{
    overlayPainter.setPen(drawingPen());
    overlayPainter.setCompositionMode(ui->pen_BTN->isChecked() ? QPainter::CompositionMode_SourceOver
                                                               : QPainter::CompositionMode_Clear);
}

void ScreenCapture::mousePressEvent(QMouseEvent *e)
{
    mouseDown = 1;
    lastPos = e->pos();
    if (ui->cap_BTN->isChecked()) {
        return;
    }
    prepareOverlayPainter();
    overlayPainter.drawPoint(lastPos);
    showDrawing();
}

void ScreenCapture::mouseMoveEvent(QMouseEvent *e)
{
    qDebug() << "MOVE";
    if (mouseDown != 0 && !ui->cap_BTN->isChecked()) {
        prepareOverlayPainter();
        overlayPainter.drawLine(lastPos, e->pos());
        lastPos = e->pos();
        showDrawing();
        return;
    }

    QImage frame = veiledImage;
    QPainter painter(&frame);
    if (mouseDown != 0) {
        const QRect r = spanned(lastPos, e->pos());
        painter.setClipRect(r);
        painter.drawImage(0, 0, screenImage);
        painter.setClipping(false);
        painter.setPen(Qt::red);
        painter.drawRect(r);
        selection = r;
        painter.drawImage(0, 0, overlayImage);
    } else {
        painter.drawImage(0, 0, overlayImage);
        painter.setPen(drawingPen());
        painter.drawPoint(e->pos());
    }
    painter.end();
    setBackground(frame);
}

// Also a mere click leads to the save dialog; the last rectangle counts then, or the whole screen.
void ScreenCapture::mouseReleaseEvent(QMouseEvent * /*e*/)
{
    mouseDown = 0;
    if (!ui->cap_BTN->isChecked()) {
        return;
    }
    const QString path =
        QFileDialog::getSaveFileName(this, tr("儲存圖片"), captureStartPath(), QStringLiteral("*.png"));
    if (path.isEmpty()) {
        return;
    }
    QPainter painter(&screenImage);
    painter.drawImage(0, 0, overlayImage);
    painter.end();
    screenImage.copy(glow::devicePixels(selection, screenImage.devicePixelRatio())).save(path);
    emit callback(path);
    close();
}

void ScreenCapture::on_cap_BTN_toggled(bool checked)
{
    if (checked) {
        setCursor(Qt::CrossCursor);
    }
}

// The cursor is what the pen or the eraser will leave.
void ScreenCapture::on_pen_BTN_toggled(bool checked)
{
    const bool erasing = ui->era_BTN->isChecked();
    if (!checked && !erasing) {
        return;
    }
    const int size = ui->PenSize->value();
    QImage image(size + 1, size + 1, QImage::Format_ARGB32);
    image.fill(0);
    QPainter painter(&image);
    if (erasing) {
        painter.drawEllipse(0, 0, size, size);
    } else {
        painter.setPen(drawingPen());
        painter.drawPoint(size / 2, size / 2);
    }
    painter.end();
    setCursor(QCursor(QPixmap::fromImage(image)));
}

void ScreenCapture::on_era_BTN_toggled(bool /*checked*/)
{
    on_pen_BTN_toggled(true);
}

// The first cursor of the two is made at the old size; the other control's slot makes it anew.
void ScreenCapture::on_size_slide_valueChanged(int value)
{
    on_pen_BTN_toggled(ui->pen_BTN->isChecked());
    ui->PenSize->setValue(value);
}

void ScreenCapture::on_PenSize_valueChanged(int value)
{
    on_pen_BTN_toggled(ui->pen_BTN->isChecked());
    ui->size_slide->setValue(value);
}

// A cancelled choice is taken as well: the pen is black from then on.
void ScreenCapture::on_color_choose_clicked()
{
    penColor = QColorDialog::getColor(penColor, this, tr("選擇顏色"));
    QString style = QStringLiteral("background-color: rgb(%r, %g, %b);");
    style.replace(QStringLiteral("%r"), QString::number(penColor.red()));
    style.replace(QStringLiteral("%g"), QString::number(penColor.green()));
    style.replace(QStringLiteral("%b"), QString::number(penColor.blue()));
    ui->color_choose->setStyleSheet(style);
}

// Through the painter and not by QImage::fill(), which would leave the painter behind if the image were shared.
void ScreenCapture::on_clr_BTN_clicked()
{
    overlayPainter.setCompositionMode(QPainter::CompositionMode_Clear);
    overlayPainter.fillRect(overlayImage.rect(), Qt::black);
    showDrawing();
}

void ScreenCapture::on_exit_BTN_clicked()
{
    close();
}
