// A scroll area that never scrolls by itself: presses travel on to the ruler, wheels to the area around it.
#pragma once

#include <QScrollArea>

class ScrollArea2 : public QScrollArea
{
    Q_OBJECT

public:
    explicit ScrollArea2(QWidget *parent = nullptr);

protected:
    void mousePressEvent(QMouseEvent *e) override;
    void wheelEvent(QWheelEvent *e) override;
};
