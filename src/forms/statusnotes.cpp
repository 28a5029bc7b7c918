#include "forms/statusnotes.h"

#include <QStatusBar>
#include <QString>
#include <QTimer>

namespace glow {

int noteMs = 10000;

void note(QStatusBar *bar, const QString &text)
{
    bar->showMessage(text);
    letGo(bar);
}

void letGo(QStatusBar *bar)
{
    const QString text = bar->currentMessage();
    QTimer::singleShot(noteMs, bar, [bar, text] {
        if (bar->currentMessage() == text) {
            bar->clearMessage();
        }
    });
}

void retract(QStatusBar *bar, const QString &beginning)
{
    if (!beginning.isEmpty() && bar->currentMessage().startsWith(beginning)) {
        bar->clearMessage();
    }
}

} // namespace glow
