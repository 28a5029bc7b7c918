// A menu that shows the tool tips of its actions beside itself.
#pragma once

#include <QMenu>

class myMenu : public QMenu
{
    Q_OBJECT

public:
    explicit myMenu(QWidget *parent = nullptr);

protected:
    bool event(QEvent *e) override;
};
