// A scroll area that never scrolls by itself, since a bar outside keeps two of them in step: presses travel on to the
// ruler, wheels and keys to the area around it.
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
    void keyPressEvent(QKeyEvent *e) override;
    bool focusNextPrevChild(bool next) override;
};
