#include "device/setup.h"

#include "forms/hints.h"
#include "forms/style.h"
#include "show/wire/portnames.h"
#include "show/wire/portscan.h"
#include "show/wire/propmends.h"
#include "ui_setup.h"

#include <QDebug>
#include <QLabel>
#include <QSerialPort>
#include <QTextBlock>
#include <QTextCodec>
#include <QTextCursor>

namespace {

// Pauses between two insertions: in a flood the terminal spends a quarter of its time on them.
constexpr int leastPauseMs = 20;
constexpr int pauseShare = 3;
constexpr int smallPiece = 256; // characters that need not wait for the pause's end

bool endsLine(QChar character)
{
    return character == u'\n' || character == u'\r';
}

// The text with only the last part of lines that are longer than the monitor shows quickly.
QString withoutEndlessLines(const QString &text)
{
    QString kept;
    int start = 0;
    for (int i = 0; i <= text.size(); ++i) {
        if (i == text.size() || endsLine(text.at(i))) {
            kept += text.midRef(qMax(start, i - setup::lineLimit), qMin(i - start, setup::lineLimit) + 1);
            start = i + 1;
        }
    }
    return kept;
}

void removeFrom(QTextDocument *document, int position, int count)
{
    QTextCursor oldest(document);
    oldest.setPosition(position);
    oldest.setPosition(position + count, QTextCursor::KeepAnchor);
    oldest.removeSelectedText();
}

} // namespace

setup::setup(QWidget *parent, int waitMs)
    : QDialog(parent)
    , ui(new Ui::setup)
    , decoder(QTextCodec::codecForName("UTF-8")->makeDecoder())
{
    ui->setupUi(this);
    glow::applyStyle(this);
    glow::addHints(this);
    ui->MONITOR->clear();
    ui->MONITOR->setUndoRedoEnabled(false); // would keep every byte that ever came
    ui->SEND_BUTTON->addAction(ui->actionenter);
    ui->actionenter->setEnabled(true);
    pause.setSingleShot(true);
    connect(&pause, &QTimer::timeout, this, &setup::showPending);
    ui->COMMAND->setFocus();
    search(waitMs);
}

setup::~setup()
{
    delete ui;
}

void setup::search(int waitMs)
{
    ui->MONITOR->insertPlainText(tr("連線中..."));
    serial = new QSerialPort(this);
    glow::setUpPort(*serial, glow::maintenanceBaud);
    update();

    glow::ScanRules rules;
    rules.waitMs = waitMs;
    rules.accepts = [](const QString &text) {
        qDebug() << text;
        return true;
    };
    rules.trying = [](int number) { qDebug() << glow::portLabel(number); };
    rules.silent = [this](int number) {
        ui->MONITOR->insertPlainText(glow::portLabel(number) + QStringLiteral("not working."));
        qDebug() << glow::portLabel(number) << "not working.";
    };
    const glow::ScanResult result = glow::scanPorts(*serial, portNumber, rules);
    showMend(glow::mendOf(result));
    switch (result) {
    case glow::ScanResult::Found:
        ui->MONITOR->insertPlainText(glow::portLabel(portNumber) + tr("連接成功"));
        connect(serial, &QSerialPort::readyRead, this, &setup::read_to_monitor);
        break;
    case glow::ScanResult::NoneOpen:
        qDebug() << "Can't find open device.";
        ui->MONITOR->appendPlainText(tr("偵測不到裝置！"));
        break;
    case glow::ScanResult::NoAnswer:
        break;
    }
}

// Below everything that stands in the dialog, which grows by it.
void setup::showMend(const QString &mend)
{
    if (mend.isEmpty()) {
        return;
    }
    auto *label = new QLabel(mend);
    label->setObjectName(QStringLiteral("mend"));
    label->setWordWrap(true);
    ui->verticalLayout_46->addWidget(label);
    resize(width(), height() + label->heightForWidth(width()));
}

void setup::read_to_monitor()
{
    take(serial->readAll());
}

void setup::take(const QByteArray &bytes)
{
    QString text = decoder->toUnicode(bytes).remove(QChar::Null);
    if (afterReturn && text.startsWith(u'\n')) {
        text.remove(0, 1); // a line's end that came in two pieces is one end
        afterReturn = false;
    }
    if (!text.isEmpty()) {
        afterReturn = text.endsWith(u'\r');
    }
    pending += text;
    if (pending.size() > monitorLimit) {
        pending = pending.right(monitorLimit);
    }
    if (!pause.isActive() || pending.size() <= smallPiece) {
        showPending();
    }
}

void setup::showPending()
{
    if (pending.isEmpty()) {
        return;
    }
    QElapsedTimer clock;
    clock.start();
    const QString text = withoutEndlessLines(pending);
    QTextDocument *document = ui->MONITOR->document();
    const int present = document->characterCount() - 1;
    const int excess = present + 1 + text.size() - monitorLimit;
    if (excess > 0) {
        // More than needed, so that not every insertion has to. What came last stands before the user's cursor.
        const int surplus = qMin(excess + monitorLimit / 4, present);
        const int at = ui->MONITOR->textCursor().position();
        removeFrom(document, at < surplus && present - at >= surplus ? present - surplus : 0, surplus);
    }
    QTextCursor cursor(document);
    cursor.setPosition(ui->MONITOR->textCursor().position());
    if (cursor.positionInBlock() + text.size() > lineLimit) {
        removeFrom(document, cursor.block().position(), cursor.positionInBlock());
    }
    // By a cursor of its own: text that the user has marked is not replaced, and the view does not move.
    cursor.insertText(text);
    pending.clear();
    if (ui->checkBox->isChecked()) {
        ui->MONITOR->ensureCursorVisible();
    }
    pause.start(qMax(leastPauseMs, static_cast<int>(clock.elapsed()) * pauseShare));
}

void setup::on_SEND_BUTTON_clicked()
{
    if (!serial->isOpen()) {
        return;
    }
    serial->write(ui->COMMAND->text().toLocal8Bit());
    ui->COMMAND->clear();
}

void setup::on_actionenter_triggered()
{
    on_SEND_BUTTON_clicked();
}
