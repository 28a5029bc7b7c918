#include "mousedriver.h"

#include "app/mainwindow.h"
#include "timeline/timelineitem.h"

#include <QApplication>
#include <QCursor>
#include <QMenu>
#include <QTimer>
#include <QWindow>
#include <QtTest>

bool NoForeignMouse::nativeEventFilter(const QByteArray &eventType, void *message, long * /*result*/)
{
    if (eventType != "xcb_generic_event_t") {
        return false;
    }
    const int type = *static_cast<const quint8 *>(message) & 0x7f;
    return (type >= 4 && type <= 8) || type == 35; // buttons, motion, enter, leave; the same by the input extension
}

QPoint MouseDriver::inWindow(const QWidget *widget, const QPoint &pos) const
{
    return widget->mapTo(window, pos);
}

bool MouseDriver::drag(TimelineItem *item, const QPoint &pos, const QVector<Step> &steps)
{
    QWindow *target = window->windowHandle();
    QPoint last;
    // A drag begins where the pointer really is, and synthetic events do not move it. What is still on its way may move
    // the item meanwhile.
    const bool there = QTest::qWaitFor([&] {
        last = inWindow(item, pos);
        QCursor::setPos(window->mapToGlobal(last));
        QCoreApplication::processEvents();
        return last == inWindow(item, pos) && QCursor::pos() == window->mapToGlobal(last);
    });
    if (!there) {
        return false;
    }
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
    QTest::mousePress(target, Qt::LeftButton, Qt::NoModifier, last);
    QObject::disconnect(begun);
    return QTest::qWaitFor([&done] { return done; });
}

void MouseDriver::click(QWidget *widget, const QPoint &pos, Qt::MouseButton button)
{
    QTest::mouseClick(window->windowHandle(), button, Qt::NoModifier, inWindow(widget, pos));
}

bool MouseDriver::doubleClick(TimelineItem *item, const QPoint &pos)
{
    // The first click is a gesture of its own.
    if (!drag(item, pos, {})) {
        return false;
    }
    QMouseEvent second(QEvent::MouseButtonDblClick, pos, item->mapToGlobal(pos), Qt::LeftButton, Qt::LeftButton,
                       Qt::NoModifier);
    QCoreApplication::sendEvent(item, &second);
    return true;
}

void MouseDriver::hover(QWidget *widget, const QPoint &pos)
{
    QTest::mouseMove(window->windowHandle(), inWindow(widget, pos));
}

QStringList MouseDriver::menu(QWidget *widget, const QPoint &pos, const QString &entry)
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
        const auto actions = popup->actions();
        for (QAction *action : actions) {
            if (!action->isSeparator()) {
                texts << (action->isEnabled() ? action->text() : QLatin1Char('(') + action->text() + QLatin1Char(')'));
            }
            if (action->text() == entry) {
                picked = action;
            }
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
