// The scroll area around the ruler and the tracks: the wheel scrolls sideways, with Control held it zooms, wherever the
// focus is, unless a text is being typed there.
#pragma once

#include <QScrollArea>

class ScrollArea : public QScrollArea
{
    Q_OBJECT

public:
    explicit ScrollArea(QWidget *parent = nullptr);

    int heldKey = 0; // the key last pressed here and not yet released, 0 when none

signals:
    void scrolled_with_ctl(int delta);

protected:
    void focusOutEvent(QFocusEvent *e) override;
    void wheelEvent(QWheelEvent *e) override;
    void keyPressEvent(QKeyEvent *e) override;
    void keyReleaseEvent(QKeyEvent *e) override;
    void mouseMoveEvent(QMouseEvent *e) override;
    bool focusNextPrevChild(bool next) override;

private:
    bool isControlHeld(const QWheelEvent &e);
};
