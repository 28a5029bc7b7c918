#include "bench.h"

#include <QElapsedTimer>
#include <QFile>
#include <QSysInfo>
#include <QThread>

#include <algorithm>

namespace bench {

namespace {

QString processor()
{
    QFile file(QStringLiteral("/proc/cpuinfo"));
    if (file.open(QIODevice::ReadOnly)) {
        const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
        for (const QString &line : lines) {
            if (line.startsWith(QLatin1String("model name"))) {
                return line.section(u':', 1).trimmed();
            }
        }
    }
    return QSysInfo::currentCpuArchitecture();
}

QString inMs(double ms)
{
    return QString::number(ms, 'f', ms < 10 ? 2 : 0) + QStringLiteral(" ms");
}

QString times(double ratio)
{
    return QString::number(ratio, 'f', 2) + QStringLiteral("x");
}

} // namespace

double median(int runs, const std::function<void()> &run)
{
    run();
    QVector<double> taken;
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer timer;
        timer.start();
        run();
        taken.append(timer.nsecsElapsed() / 1e6);
    }
    std::sort(taken.begin(), taken.end());
    return taken.at(taken.size() / 2);
}

bool within(const Row &row)
{
    if (!row.note.isEmpty()) {
        return true;
    }
    return row.floor > 0 ? row.measured <= row.limit * row.floor : row.measured <= row.limit;
}

QString table(const QVector<Row> &rows)
{
    QString text = QStringLiteral("Machine: %1, %2 cores, %3, Qt %4\n\n")
                       .arg(processor())
                       .arg(QThread::idealThreadCount())
                       .arg(QSysInfo::prettyProductName(), QString::fromLatin1(qVersion()));
    text +=
        QStringLiteral("| Figure | Measured | Floor in the same run | Ratio | Limit | |\n|---|---|---|---|---|---|\n");
    for (const Row &row : rows) {
        if (!row.note.isEmpty()) {
            text += QStringLiteral("| %1 | %2 | | | | skipped |\n").arg(row.what, row.note);
            continue;
        }
        const bool relative = row.floor > 0;
        text += QStringLiteral("| %1 | %2 | %3 | %4 | %5 | %6 |\n")
                    .arg(row.what, inMs(row.measured), relative ? inMs(row.floor) : QString(),
                         relative ? times(row.measured / row.floor) : QString(),
                         relative ? times(row.limit) : inMs(row.limit),
                         within(row) ? QStringLiteral("within") : QStringLiteral("**exceeded**"));
    }
    return text;
}

} // namespace bench
