// Wiping the prop's memory, handing it new firmware, and the way into its terminal. All of it blocks the window while
// it listens to a port.
#include "app/mainwindow.h"

#include "device/pass.h"
#include "device/setup.h"
#include "show/wire/portnames.h"
#include "show/wire/portscan.h"
#include "show/wire/wipe.h"

#include <QDir>
#include <QEventLoop>
#include <QMessageBox>
#include <QProcess>
#include <QSerialPort>
#include <QTimer>

namespace {

// Menus and dialogs that were just closed have to be gone from the screen before the window stops answering. Their
// traces are cleared by what the window system sends within a few milliseconds.
void paintBeforeWaiting(QWidget *window)
{
    constexpr int settleMs = 40;
    QEventLoop loop;
    QTimer::singleShot(settleMs, &loop, &QEventLoop::quit);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    window->repaint();
}

// The lock, as a window of its own that wears the main window's icon.
bool unlocked(const QWidget *window)
{
    Pass pass(nullptr);
    pass.setWindowIcon(window->windowIcon());
    return pass.exec() == QDialog::Accepted;
}

QSerialPort *maintenancePort(QObject *parent)
{
    auto *port = new QSerialPort(parent); // closed after the job, gone with the window
    glow::setUpPort(*port, glow::maintenanceBaud);
    return port;
}

} // namespace

void MainWindow::on_actionFormat_triggered()
{
    paintBeforeWaiting(this);
    QSerialPort *port = maintenancePort(this);
    int number = 0;
    glow::ScanRules rules;
    rules.waitMs = propWaitMs;
    rules.accepts = [](const QString &text) { return text.contains(QLatin1String("Wait")); };
    if (glow::scanPorts(*port, number, rules) == glow::ScanResult::NoneOpen) {
        QMessageBox::warning(this, QString(), tr("偵測不到裝置！"), QMessageBox::Ok);
        return;
    }
    // Even if nobody said "Wait": the order then runs into its time-out.
    if (glow::wipeMemory(*port)) {
        QMessageBox::about(this, QString(), tr("記憶體清除完成"));
    } else {
        QMessageBox::warning(this, QString(), tr("清除記憶體逾時"), QMessageBox::Ok);
    }
    port->close();
}

void MainWindow::on_actionFirUpdate_triggered()
{
    if (unlocked(this)) {
        updatesystem();
    }
}

void MainWindow::updatesystem()
{
    paintBeforeWaiting(this);
    QSerialPort *port = maintenancePort(this);
    int number = 0;
    glow::ScanRules rules;
    rules.waitMs = propWaitMs;
    rules.accepts = [](const QString &) { return true; };
    const glow::ScanResult result = glow::scanPorts(*port, number, rules);
    if (result == glow::ScanResult::NoneOpen) {
        QMessageBox::warning(this, QString(), tr("找不到裝置！"), QMessageBox::Ok);
        return;
    }
    port->close(); // the script needs it
    if (result == glow::ScanResult::NoAnswer) {
        return;
    }
    const QString tools = QDir::currentPath() + QStringLiteral("/tool/");
    // Port, alternate setting and USB id of the boot-loader, firmware image. The script reports for itself.
    QProcess::startDetached(tools + QStringLiteral("maple_upload.bat"),
                            {glow::portLabel(number), QStringLiteral("2"), QStringLiteral("1EAF:0003"),
                             tools + QStringLiteral("firm/Brevon.RE.bin")});
}

void MainWindow::on_action_admin_triggered()
{
    if (!unlocked(this)) {
        return;
    }
    paintBeforeWaiting(this);
    setup terminal(nullptr, propWaitMs);
    terminal.setWindowIcon(windowIcon());
    terminal.exec();
}
