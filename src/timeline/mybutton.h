// A push button with a signal for the pointer that enters or leaves it.
#pragma once

#include <QPushButton>

class MyButton : public QPushButton
{
    Q_OBJECT

public:
    explicit MyButton(QWidget *parent = nullptr);

signals:
    void hovered(bool over);

protected:
    void enterEvent(QEvent *e) override;
    void leaveEvent(QEvent *e) override;
};
