// Figures with their limits. A figure is a time, or a ratio to a floor that was measured in the same run.
#pragma once

#include <QString>
#include <QVector>

#include <functional>

namespace bench {

struct Row
{
    QString what;
    double measured = 0; // milliseconds
    double floor = 0;    // milliseconds; 0 where the limit is a time
    double limit = 0;    // milliseconds, or times the floor
    QString note;        // instead of a figure, where it could not be measured
};

// Milliseconds of one run: the median of several, the first one not counted.
double median(int runs, const std::function<void()> &run);

// The table in Markdown, with the machine it was made on.
QString table(const QVector<Row> &rows);

// False if a figure exceeds its limit.
bool within(const Row &row);

void device(QVector<Row> &rows);
void render(QVector<Row> &rows);
void edit(QVector<Row> &rows);
void song(QVector<Row> &rows);
void film(QVector<Row> &rows);

} // namespace bench
