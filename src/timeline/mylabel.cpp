#include "timeline/mylabel.h"

MyLabel::MyLabel(QWidget *parent)
    : QLabel(parent)
{
    setFixedSize(20, 55);
    setMargin(0);
    setAlignment(Qt::AlignCenter);
}

void MyLabel::mousePressEvent(QMouseEvent *e)
{
    emit mousePress(e);
}
