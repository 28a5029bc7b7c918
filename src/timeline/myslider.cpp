#include "timeline/myslider.h"

MySlider::MySlider(QWidget *parent)
    : QSlider(parent)
{
}

void MySlider::mouseDoubleClickEvent(QMouseEvent *e)
{
    Q_UNUSED(e)
    setValue((minimum() + maximum()) / 2);
}
