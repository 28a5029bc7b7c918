#include "render/patternview.h"

#include <QEvent>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QPixmap>
#include <QScrollBar>

namespace glow {

namespace {

// Shrinks what is higher than the view, so that the LEDs at both ends are seen. Only the width scrolls.
void fitHeight(QGraphicsView &view)
{
    view.resetTransform();
    const QSizeF picture = view.sceneRect().size();
    const QSize place = view.maximumViewportSize();
    double room = place.height();
    if (picture.width() * room > place.width() * picture.height()) {
        room -= view.horizontalScrollBar()->sizeHint().height();
    }
    if (room > 0 && picture.height() > room) {
        view.scale(room / picture.height(), room / picture.height());
    }
}

class HeightKeeper : public QObject
{
public:
    explicit HeightKeeper(QGraphicsView *view)
        : QObject(view)
    {
        view->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Resize) {
            fitHeight(*static_cast<QGraphicsView *>(parent()));
        }
        return QObject::eventFilter(watched, event);
    }
};

} // namespace

void showPattern(QGraphicsView &view, const QPixmap &picture)
{
    const QGraphicsScene *before = view.scene();
    if (before == nullptr) {
        new HeightKeeper(&view);
    }
    auto *scene = new QGraphicsScene(&view);
    scene->addPixmap(picture);
    view.setScene(scene);
    delete before;
    fitHeight(view);
    view.show();
}

} // namespace glow
