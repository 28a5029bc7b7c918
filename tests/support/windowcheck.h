// What must hold of the whole window after every step, whatever was done.
#pragma once

#include <QString>

class MainWindow;

// Empty when all is well, else the first thing found wrong: every listed item is visible on its track and nowhere else
// listed, exactly one track is current, the labels are numbered from the bottom and stand in their tracks' rows, the
// editor's item and mode agree, every item's blob is in step with its members.
QString whatIsWrong(const MainWindow &window);
