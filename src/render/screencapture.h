// The screen capture tool: freezes a picture of the desktop under a white veil, lets the user draw on it and rub it out
// again, and saves a rectangle of it. A floating dock holds its tools; hiding the dock ends the tool.
//
// It covers the desktop, all screens together, so that a position in the dialog is a position on the desktop. Positions
// and pen widths are logical pixels; the pictures hold the screens' device pixels and know their ratio.
//
// The desktop is grabbed at construction: whatever shall not be in the picture must have left the screen before. Run it
// with exec(); it is on the screen already then.
#pragma once

#include <QColor>
#include <QDialog>
#include <QImage>
#include <QPainter>
#include <QPen>
#include <QPoint>
#include <QRect>

namespace Ui {
class ScreenCapture;
}

class ScreenCapture : public QDialog
{
    Q_OBJECT

public:
    explicit ScreenCapture(QWidget *parent);
    ~ScreenCapture() override;

    QPoint lastPos;                  // the press point; while drawing, the previous position
    QPainter veilPainter;            // on veiledImage, only while the veil is laid
    Ui::ScreenCapture *ui = nullptr; // the tools
    quint8 mouseDown = 0;            // 1 while a button is held
    QImage veiledImage;              // the desktop under the veil, the base of every view
    QImage screenImage;              // the desktop as it was
    QImage overlayImage;             // the drawing: ARGB32, transparent where nothing was drawn
    QRect selection;                 // the capture rectangle, null until one was drawn
    QColor penColor = Qt::black;     // invalid after a cancelled choice, which paints as black
    QPainter overlayPainter;         // on overlayImage, as long as the dialog lives

signals:
    // The path under which the picture was saved; whether the saving worked is not checked. At most once.
    void callback(QString fsv);

public slots:
    // Grabs the desktop into screenImage and veiledImage and shows it.
    void shoot();

    void on_cap_BTN_toggled(bool checked);
    void on_pen_BTN_toggled(bool checked);
    void on_era_BTN_toggled(bool checked);
    void on_size_slide_valueChanged(int value);
    void on_PenSize_valueChanged(int value);
    void on_color_choose_clicked();
    void on_clr_BTN_clicked();
    void on_exit_BTN_clicked();

protected:
    void mousePressEvent(QMouseEvent *e) override;
    void mouseReleaseEvent(QMouseEvent *e) override;
    void mouseMoveEvent(QMouseEvent *e) override;
    void moveEvent(QMoveEvent *e) override;

private:
    QPen drawingPen() const;
    void prepareOverlayPainter();

    // The dialog's background stands for the screen: every view is a new one.
    void setBackground(const QImage &frame);
    void showDrawing(); // the veiled desktop with the overlay on it
    void coverDesktop();

    int corrections = 0; // of a place that was not asked for
};
