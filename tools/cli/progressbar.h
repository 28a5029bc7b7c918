// How far a long command is: one line of standard error that is drawn over and over. Where standard error is no
// terminal nothing is drawn.
#pragma once

#include <QString>

namespace cli {

class ProgressBar
{
public:
    ~ProgressBar() { end(); }

    // 0 to 100, and a word behind it, which is drawn anew with the percentage.
    void show(int percent, const QString &word = QString());

    // Ends the line, so that the next thing said begins a new one. The bar can begin again afterwards.
    void end();

private:
    int drawn = -1; // the percentage that stands on the line, -1 while there is none
};

} // namespace cli
