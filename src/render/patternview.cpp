#include "render/patternview.h"

#include <QGraphicsScene>
#include <QGraphicsView>
#include <QPixmap>

namespace glow {

void showPattern(QGraphicsView &view, const QPixmap &picture)
{
    const QGraphicsScene *before = view.scene();
    auto *scene = new QGraphicsScene(&view);
    scene->addPixmap(picture);
    view.setScene(scene);
    delete before;
    view.show();
}

} // namespace glow
