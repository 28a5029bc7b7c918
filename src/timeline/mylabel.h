// The number at the left of a track's row; a press on it is a press on the track.
#pragma once

#include <QLabel>

class MyLabel : public QLabel
{
    Q_OBJECT

public:
    explicit MyLabel(QWidget *parent = nullptr);

signals:
    void mousePress(QMouseEvent *e);

protected:
    void mousePressEvent(QMouseEvent *e) override;
};
