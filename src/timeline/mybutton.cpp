#include "timeline/mybutton.h"

MyButton::MyButton(QWidget *parent)
    : QPushButton(parent)
{
}

void MyButton::enterEvent(QEvent *e)
{
    QPushButton::enterEvent(e);
    emit hovered(true);
}

void MyButton::leaveEvent(QEvent *e)
{
    QPushButton::leaveEvent(e);
    emit hovered(false);
}
