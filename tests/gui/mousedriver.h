// Drives the window by mouse events that take the same road as the window system's own.
#pragma once

#include "app/mainwindow.h"
#include "timeline/timelineitem.h"

#include <QAbstractNativeEventFilter>
#include <QApplication>
#include <QCursor>
#include <QMenu>
#include <QWindow>
#include <QtTest>

#include <functional>

// The pointer of the display stands where it was put, but its own events may come late, in the middle of a drag, and
// would pull the item back there. While this stands (installed by the application's object), only the test moves the
// mouse.
class NoForeignMouse : public QAbstractNativeEventFilter
{
public:
    bool nativeEventFilter(const QByteArray &eventType, void *message, long * /*result*/) override
    {
        if (eventType != "xcb_generic_event_t") {
            return false;
        }
        const int type = *static_cast<const quint8 *>(message) & 0x7f;
        return (type >= 4 && type <= 8) || type == 35; // buttons, motion, enter, leave; the same by the input extension
    }
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
    bool drag(TimelineItem *item, const QPoint &pos, const QVector<Step> &steps)
    {
        QWindow *target = window->windowHandle();
        QPoint last;
        // A drag begins where the pointer really is, and synthetic events do not move it. What is still on its way may
        // move the item meanwhile.
        const bool there = QTest::qWaitFor([&] {
            last = inWindow(item, pos);
            QCursor::setPos(window->mapToGlobal(last));
            QCoreApplication::processEvents();
            return last == inWindow(item, pos) && QCursor::pos() == window->mapToGlobal(last);
        });
        int next = 0;
        bool done = false;
        QTimer pace;
        QObject::connect(&pace, &QTimer::timeout, [&] {
            if (next < steps.size()) {
                const Step &step = steps.at(next);
                ++next;
                last = inWindow(step.widget, step.pos);
                QTest::mouseMove(target, last);
                if (step.check) {
                    step.check();
                }
                return;
            }
            pace.stop();
            done = true;
            if (escapes) {
                QTest::keyClick(target, Qt::Key_Escape);
            }
            QTest::mouseRelease(target, Qt::LeftButton, Qt::NoModifier, last);
        });
        const auto begun = QObject::connect(item, &TimelineItem::dragBegins, [&pace] { pace.start(0); });
        if (there) {
            QTest::mousePress(target, Qt::LeftButton, Qt::NoModifier, last);
        }
        QObject::disconnect(begun);
        return there && QTest::qWaitFor([&done] { return done; });
    }

    // Whether the last step of a drag is the Escape key instead of a release.
    bool escapes = false;

    void click(QWidget *widget, const QPoint &pos)
    {
        QTest::mouseClick(window->windowHandle(), Qt::LeftButton, Qt::NoModifier, inWindow(widget, pos));
    }

    // Clicks with the right button and picks the entry of the menu that opens; an empty text closes it. Returns the
    // texts of the menu, a disabled entry in brackets.
    QStringList menu(QWidget *widget, const QPoint &pos, const QString &entry)
    {
        const QPoint place = inWindow(widget, pos); // the widget may be off the window afterwards
        QStringList texts;
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, [&] {
            auto *popup = qobject_cast<QMenu *>(QApplication::activePopupWidget());
            if (popup == nullptr) {
                return;
            }
            poll.stop();
            QAction *picked = nullptr;
            for (QAction *action : popup->actions()) {
                if (!action->isSeparator()) {
                    texts << (action->isEnabled() ? action->text()
                                                  : QLatin1Char('(') + action->text() + QLatin1Char(')'));
                }
                picked = action->text() == entry ? action : picked;
            }
            if (picked != nullptr) {
                QTest::mouseClick(popup, Qt::LeftButton, Qt::NoModifier, popup->actionGeometry(picked).center());
            } else {
                popup->close();
            }
        });
        poll.start(5);
        QTest::mousePress(window->windowHandle(), Qt::RightButton, Qt::NoModifier, place);
        if (!QTest::qWaitFor([&poll] { return !poll.isActive(); })) {
            texts << QStringLiteral("no menu came");
        }
        QTest::mouseRelease(window->windowHandle(), Qt::RightButton, Qt::NoModifier, place);
        return texts;
    }

    QPoint inWindow(const QWidget *widget, const QPoint &pos) const { return widget->mapTo(window, pos); }

private:
    MainWindow *window;
    NoForeignMouse onlyOurs; // takes itself off when destroyed
};
