// A small terminal for talking to the prop by hand. It finds the prop before it is shown, which blocks the program for
// up to five seconds a silent port; without a prop it opens all the same and is of no use.
#pragma once

#include "show/wire/portscan.h"

#include <QDialog>
#include <QElapsedTimer>
#include <QString>
#include <QTimer>

#include <memory>

class QSerialPort;
class QTextDecoder;

namespace Ui {
class setup;
}

class setup : public QDialog
{
    Q_OBJECT

public:
    explicit setup(QWidget *parent, int waitMs = glow::propWaitMs);
    ~setup() override;

    qint32 portNumber = 0;         // the port's number, as of the name last tried
    QSerialPort *serial = nullptr; // goes with the dialog
    Ui::setup *ui;

public slots:
    // Shows what the prop has said, at the monitor's cursor and as it comes. In a flood it gathers for a moment between
    // two insertions, and the monitor keeps the latest monitorLimit characters only, of a line the latest lineLimit:
    // the dialog stays usable.
    void read_to_monitor();
    // The same for bytes that came by another way.
    void take(const QByteArray &bytes);
    // Sends the command line as it stands, without a line ending, and empties it; nothing happens without a port.
    void on_SEND_BUTTON_clicked();
    void on_actionenter_triggered();

public:
    static constexpr int monitorLimit = 100000;
    static constexpr int lineLimit = 20000;

private:
    void search(int waitMs);
    void showMend(const QString &mend);
    void showPending();

    std::unique_ptr<QTextDecoder> decoder; // UTF-8; a character may come in two pieces
    QString pending;
    bool afterReturn = false; // the last character that came is a carriage return
    QTimer pause;             // until the next insertion
};
