// A slider that a double click sets to the middle of its range.
#pragma once

#include <QSlider>

class MySlider : public QSlider
{
    Q_OBJECT

public:
    explicit MySlider(QWidget *parent = nullptr);

protected:
    void mouseDoubleClickEvent(QMouseEvent *e) override;
};
