// Wiping the prop's memory, handing it new firmware, and the way into its terminal. All of it blocks the window while
// it listens to a port.
#include "app/mainwindow.h"

#include "device/pass.h"
#include "device/setup.h"
#include "forms/boxes.h"
#include "forms/statusnotes.h"
#include "show/base/hint.h"
#include "show/wire/portnames.h"
#include "show/wire/portscan.h"
#include "show/wire/propmends.h"
#include "show/wire/wipe.h"
#include "ui_mainwindow.h"

#include <QDir>
#include <QEventLoop>
#include <QMessageBox>
#include <QProcess>
#include <QSerialPort>
#include <QStatusBar>
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

void MainWindow::warnOfWipe()
{
    const QString warning = glow::hint(QT_TRANSLATE_NOOP("Hints", "立即清除道具的記憶體，不再詢問"));
    ui->actionFormat->setToolTip(warning);
    ui->actionFormat->setStatusTip(warning);
    ui->menu_2->setToolTipsVisible(true);
}

void MainWindow::on_actionFormat_triggered()
{
    paintBeforeWaiting(this);
    QSerialPort *port = maintenancePort(this);
    int number = 0;
    glow::ScanRules rules;
    rules.waitMs = propWaitMs;
    rules.accepts = [](const QString &text) { return text.contains(QLatin1String("Wait")); };
    if (glow::scanPorts(*port, number, rules) == glow::ScanResult::NoneOpen) {
        glow::tell(this, QMessageBox::Warning, QString(), tr("偵測不到裝置！"),
                   glow::mendOf(glow::ScanResult::NoneOpen));
        return;
    }
    // Even if nobody said "Wait": the order then runs into its time-out.
    if (glow::wipeMemory(*port)) {
        QMessageBox::about(this, QString(), tr("記憶體清除完成"));
    } else {
        glow::tell(this, QMessageBox::Warning, QString(), tr("清除記憶體逾時"), glow::mendOfWipe());
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
        glow::tell(this, QMessageBox::Warning, QString(), tr("找不到裝置！"), glow::mendOf(result));
        return;
    }
    port->close(); // the script needs it
    if (result == glow::ScanResult::NoAnswer) {
        statusBar()->showMessage(glow::hint(QT_TRANSLATE_NOOP("Hints", "沒有更新韌體：連接埠打得開，但沒有道具說話")));
        return;
    }
    const QString tools = QDir::currentPath() + QStringLiteral("/tool/");
    // Port, alternate setting and USB id of the boot-loader, firmware image. The script reports for itself.
    const QString script = tools + QStringLiteral("maple_upload.bat");
    const bool started =
        QProcess::startDetached(script, {glow::portLabel(number), QStringLiteral("2"), QStringLiteral("1EAF:0003"),
                                         tools + QStringLiteral("firm/Brevon.RE.bin")});
    if (!started) {
        statusBar()->showMessage(
            glow::hint(QT_TRANSLATE_NOOP("Hints", "沒有更新韌體：無法執行 %1")).arg(QDir::toNativeSeparators(script)));
    }
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
