#include "progressbar.h"

#include "terminal.h"

#include <QTextStream>
#include <QtGlobal>

#include <cstdio>

namespace cli {

void ProgressBar::show(int percent, const QString &word)
{
    constexpr int width = 40;
    percent = qBound(0, percent, 100);
    if (percent == drawn || !errorsAreWatched()) {
        return;
    }
    const int filled = percent * width / 100;
    QTextStream(stderr) << "\r[" << QString(filled, u'#') << QString(width - filled, u' ') << "] " << percent << "%"
                        << word;
    drawn = percent;
}

void ProgressBar::end()
{
    if (drawn >= 0) {
        QTextStream(stderr) << "\n";
        drawn = -1;
    }
}

} // namespace cli
