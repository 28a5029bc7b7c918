// The preview: the simulated prop as a widget that runs freely on a clock of its own.
//
// It is an OpenGL widget only for its fast surface; everything is drawn through QPainter. Where the system gives no
// OpenGL context (remote desktops, the offscreen platform) a plain widget takes its place in the layout and shows the
// same frames: a window with a visible OpenGL widget would not be painted at all there.
#pragma once

#include "show/draw/propsimulator.h"

#include <QOpenGLFunctions>
#include <QOpenGLWidget>
#include <QPointer>
#include <QTimer>

class MyGL : public QOpenGLWidget, protected QOpenGLFunctions, public glow::PropSimulator
{
    Q_OBJECT

public:
    explicit MyGL(QWidget *parent = nullptr);

    // Shows a pattern from its column 0: the picture is brought to leds rows and to the columns of one repetition; a
    // null one counts as black. fps is not used.
    void setPattern(const QPixmap &pixmap, short leds, int fps, double seconds, int repeats);

    // The widget that shows the frames: this one, or the plain one in its place where there is no OpenGL.
    QWidget *surface();

    QTimer repaintTimer; // 1 ms: repaints as fast as the system allows, as long as something moves
    QTimer fpsTimer;     // 500 ms: renews the frame rate text

public slots:
    void update_fps();

protected:
    void initializeGL() override;
    void paintGL() override;

private:
    void useRasterSurface();

    QPointer<QWidget> rasterSurface;
};
