#include "preview/mygl.h"

#include <QElapsedTimer>
#include <QPaintEvent>
#include <QPainter>
#include <QSizePolicy>
#include <QSurfaceFormat>

namespace {

// Stands in for the OpenGL surface. Composing a frame without OpenGL costs milliseconds, so it leaves the event loop
// time for everything else.
class RasterView : public QWidget
{
public:
    explicit RasterView(MyGL *owner)
        : QWidget(owner)
        , prop(owner)
    {
        setAttribute(Qt::WA_OpaquePaintEvent);
        setAttribute(Qt::WA_TransparentForMouseEvents);
        resize(owner->size());
        connect(&timer, &QTimer::timeout, this, [this]() { update(); });
        timer.start(frameMs);
        show();
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        prop->paintOpaqueFrame(painter, width(), height());
    }

private:
    static constexpr int frameMs = 33;

    glow::PropSimulator *prop;
    QTimer timer;
};

} // namespace

MyGL::MyGL(QWidget *parent)
    : QOpenGLWidget(parent)
{
    QSurfaceFormat surface;
    surface.setSwapInterval(0);
    surface.setSwapBehavior(QSurfaceFormat::DoubleBuffer);
    setFormat(surface);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setMinimumSize(200, 200);
    setMaximumSize(9999, 9999);

    connect(&repaintTimer, &QTimer::timeout, this, qOverload<>(&QWidget::update));
    connect(&fpsTimer, &QTimer::timeout, this, &MyGL::update_fps);
    repaintTimer.start(1);
    fpsTimer.start(500);
}

void MyGL::setPattern(const QPixmap &pixmap, short leds, int fps, double seconds, int repeats)
{
    Q_UNUSED(fps)
    showPicture(pixmap.toImage(), leds, seconds, repeats);
}

void MyGL::update_fps()
{
    frameTimeShown = frameTimeAverage;
}

void MyGL::initializeGL() {}

void MyGL::paintGL()
{
    QPainter painter(this);
    // The surface's buffer has an alpha channel whatever the window's has. It starts transparent, as the afterglow's
    // composition wants it, and what stays transparent is filled with black last.
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(rect(), Qt::transparent);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    paintFrame(painter, width(), height());
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOver);
    painter.fillRect(rect(), Qt::black);
}

void MyGL::resizeEvent(QResizeEvent *event)
{
    QOpenGLWidget::resizeEvent(event);
    replaceMissingSurface();
}

void MyGL::showEvent(QShowEvent *event)
{
    QOpenGLWidget::showEvent(event);
    replaceMissingSurface();
}

void MyGL::replaceMissingSurface()
{
    if (rasterView != nullptr) {
        rasterView->resize(size());
    } else if (isVisible() && !isValid()) {
        rasterView = new RasterView(this);
    }
}
