#include "preview/mygl.h"

#include <QDebug>
#include <QLayout>
#include <QOpenGLContext>
#include <QPaintEvent>
#include <QPainter>
#include <QSurfaceFormat>

namespace {

// How often the preview looks whether it is to be painted, in milliseconds: as fast as the system allows, or soon
// enough after a change while nothing moves.
constexpr int frameMs = 1;
constexpr int stillMs = 20;

// Stands in for the OpenGL surface. It repaints at a pace that leaves the event loop time for everything else, since
// such a system is often a slow one.
class RasterSurface : public QWidget
{
public:
    RasterSurface(MyGL *owner, QWidget *parent)
        : QWidget(parent)
        , prop(owner)
    {
        setAttribute(Qt::WA_OpaquePaintEvent);
        setSizePolicy(owner->sizePolicy());
        setMinimumSize(owner->minimumSize());
        setMaximumSize(owner->maximumSize());
        setGeometry(owner->geometry());
        connect(&timer, &QTimer::timeout, this, [this] {
            if (prop != nullptr && !prop->skipFrame()) {
                update();
            }
        });
        timer.start(frameMs);
    }

protected:
    void paintEvent(QPaintEvent * /*event*/) override
    {
        QPainter painter(this);
        if (prop != nullptr) {
            prop->paintFrame(painter, width(), height());
        }
    }

private:
    static constexpr int frameMs = 33;

    QPointer<MyGL> prop;
    QTimer timer;
};

// Asked once: a system does not gain OpenGL while the program runs.
bool systemHasOpenGL()
{
    static const bool has = []() {
        QOpenGLContext context;
        return context.create();
    }();
    return has;
}

} // namespace

MyGL::MyGL(QWidget *parent)
    // Without OpenGL Qt cannot paint a window that has a render-to-texture widget anywhere below it, hidden or not. As
    // a window of its own, never shown, this one keeps out of its parent's window.
    : QOpenGLWidget(parent, systemHasOpenGL() ? Qt::WindowFlags() : Qt::Window)
{
    QSurfaceFormat surfaceFormat;
    surfaceFormat.setSwapInterval(0);
    surfaceFormat.setSwapBehavior(QSurfaceFormat::DoubleBuffer);
    setFormat(surfaceFormat);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setMinimumSize(200, 200);
    setMaximumSize(9999, 9999);

    connect(&repaintTimer, &QTimer::timeout, this, [this] {
        const bool isStill = skipFrame();
        if (!isStill) {
            update();
        }
        // To be woken a thousand times a second costs more than all that is left to do.
        const int interval = isStill ? stillMs : frameMs;
        if (repaintTimer.interval() != interval) {
            repaintTimer.setInterval(interval);
        }
    });
    connect(&fpsTimer, &QTimer::timeout, this, &MyGL::update_fps);
    repaintTimer.start(frameMs);
    fpsTimer.start(500);

    if (!systemHasOpenGL() && parent != nullptr) {
        hide();
        repaintTimer.stop();
        // The layout that this widget will stand in is not there yet.
        QTimer::singleShot(0, this, &MyGL::useRasterSurface);
    }
}

void MyGL::setPattern(const QPixmap &pixmap, short leds, int fps, double seconds, int repeats)
{
    Q_UNUSED(fps)
    showPicture(pixmap.toImage(), leds, seconds, repeats);
}

QWidget *MyGL::surface()
{
    if (rasterSurface != nullptr) {
        return rasterSurface;
    }
    return this;
}

void MyGL::update_fps()
{
    frameTimeShown = frameTimeAverage;
}

void MyGL::initializeGL() {}

void MyGL::paintGL()
{
    QPainter painter(this);
    paintFrame(painter, width(), height());
}

void MyGL::useRasterSurface()
{
    qDebug() << "no OpenGL, preview by raster";
    QWidget *parent = parentWidget();
    rasterSurface = new RasterSurface(this, parent);
    if (parent->layout() != nullptr) {
        delete parent->layout()->replaceWidget(this, rasterSurface);
    }
    rasterSurface->show();
}
