#include "forms/hints.h"

#include <QAbstractButton>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QList>
#include <QPixmap>
#include <QProgressBar>
#include <QScrollBar>
#include <QString>
#include <QWidget>

namespace glow {

namespace {

struct Tip
{
    const char *control;
    const char *text;
};

// Of the controls that need more said than their name.
constexpr Tip tips[] = {
    {"Oview_slide", QT_TRANSLATE_NOOP("Hints", "旋轉速度：中間靜止，兩端最快")},
    {"Speed_slide", QT_TRANSLATE_NOOP("Hints", "速度：雙擊回到中間")},
    {"Font_size", QT_TRANSLATE_NOOP("Hints", "字高：10 為全高")},
    {"Mode_t1", QT_TRANSLATE_NOOP("Hints", "開始時間（分:秒.毫秒）")},
    {"Mode_last", QT_TRANSLATE_NOOP("Hints", "長度（秒）")},
    {"Mode_t2", QT_TRANSLATE_NOOP("Hints", "結束時間（分:秒.毫秒）")},
};

// Areas have names too, and a tip of theirs would show wherever the mouse rests.
bool wantsTip(const QWidget *widget)
{
    if (const auto *label = qobject_cast<const QLabel *>(widget)) {
        return !label->property("pixmap").value<QPixmap>().isNull();
    }
    return qobject_cast<const QAbstractButton *>(widget) != nullptr ||
           (qobject_cast<const QAbstractSlider *>(widget) != nullptr &&
            qobject_cast<const QScrollBar *>(widget) == nullptr) ||
           qobject_cast<const QAbstractSpinBox *>(widget) != nullptr ||
           qobject_cast<const QComboBox *>(widget) != nullptr || qobject_cast<const QLineEdit *>(widget) != nullptr ||
           qobject_cast<const QProgressBar *>(widget) != nullptr;
}

QString tipOf(const QWidget *widget)
{
    for (const Tip &tip : tips) {
        if (widget->objectName() == QLatin1String(tip.control)) {
            return hint(tip.text);
        }
    }
    return widget->toolTip().isEmpty() ? widget->accessibleName() : widget->toolTip();
}

QString shortcutOf(const QWidget *widget)
{
    const auto *button = qobject_cast<const QAbstractButton *>(widget);
    const QKeySequence keys = button != nullptr ? button->shortcut() : QKeySequence();
    return keys.isEmpty() ? QString() : QStringLiteral(" (") + keys.toString(QKeySequence::NativeText) + u')';
}

} // namespace

void addHints(QWidget *window)
{
    const QList<QWidget *> widgets = window->findChildren<QWidget *>();
    for (QWidget *widget : widgets) {
        if (widget->accessibleName().isEmpty()) {
            continue; // it says what it is, or is part of a control that does
        }
        widget->setAccessibleName(hint(widget->accessibleName().toUtf8().constData()));
        if (wantsTip(widget)) {
            widget->setToolTip(tipOf(widget) + shortcutOf(widget));
        }
    }
}

} // namespace glow
