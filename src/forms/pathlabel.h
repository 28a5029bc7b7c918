// A line of text that can be longer than its place, such as a path: shortened in its middle there, whole in a tool tip.
#pragma once

#include <QLabel>

class PathLabel : public QLabel
{
    Q_OBJECT

public:
    explicit PathLabel(QWidget *parent = nullptr);

protected:
    bool event(QEvent *e) override;
    void paintEvent(QPaintEvent *e) override;
};
