// Drives the window by mouse events that take the same road as the window system's own.
#pragma once

#include <QAbstractNativeEventFilter>
#include <QCoreApplication>
#include <QPoint>
#include <QVector>

#include <functional>

class MainWindow;
class TimelineItem;
class QWidget;

// The pointer of the display stands where it was put, but its own events may come late, in the middle of a drag, and
// would pull the item back there. While this stands (installed by the application's object), only the test moves the
// mouse.
class NoForeignMouse : public QAbstractNativeEventFilter
{
public:
    bool nativeEventFilter(const QByteArray &eventType, void *message, long *result) override;
};

class MouseDriver
{
public:
    explicit MouseDriver(MainWindow *driven)
        : window(driven)
    {
        QCoreApplication::instance()->installNativeEventFilter(&onlyOurs);
    }

    // A step of a drag: the pointer moves to a point of a widget, then the check runs, still inside the drag.
    struct Step
    {
        QWidget *widget;
        QPoint pos;
        std::function<void()> check;
    };

    // Presses on an item, goes through the steps once the drag runs, and releases. Returns when the press handler has
    // returned and with it the whole gesture. False if the drag never came to its end.
    bool drag(TimelineItem *item, const QPoint &pos, const QVector<Step> &steps);

    // Whether the last step of a drag is the Escape key instead of a release.
    bool escapes = false;

    void click(QWidget *widget, const QPoint &pos, Qt::MouseButton button = Qt::LeftButton);
    bool doubleClick(TimelineItem *item, const QPoint &pos);
    void hover(QWidget *widget, const QPoint &pos);

    // Clicks with the right button and picks the entry of the menu that opens; an empty text closes it. Returns the
    // texts of the menu, a disabled entry in brackets.
    QStringList menu(QWidget *widget, const QPoint &pos, const QString &entry);

private:
    QPoint inWindow(const QWidget *widget, const QPoint &pos) const;

    MainWindow *window;
    NoForeignMouse onlyOurs; // takes itself off when destroyed
};
