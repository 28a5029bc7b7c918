// What the prop will not show as drawn, as a list beside the window: a double click or Return goes to the place.
#pragma once

#include <QDialog>
#include <QVector>

class QLabel;
class QListWidget;

namespace glow {
struct Finding;
}

class CheckDialog : public QDialog
{
    Q_OBJECT

public:
    explicit CheckDialog(QWidget *parent);

    // The findings of a track (see showcheck.h); a track without patterns has none.
    void setFindings(const QVector<glow::Finding> &findings, bool emptyTrack);

    QListWidget *list;
    QLabel *summary;

signals:
    void placeChosen(int ms); // show time
    void checkAgain();        // the show may have changed meanwhile
};
