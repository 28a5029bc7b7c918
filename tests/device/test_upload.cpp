// The upload, against a simulated prop on a real pseudo-terminal.
#include "device/devicewindow.h"

#include "device/deviceimage.h"
#include "device/portnames.h"
#include "device/workerthread.h"
#include "prop/simulatedprop.h"

#include <QRandomGenerator>
#include <QSerialPort>

namespace {

constexpr int longest = 60000; // milliseconds, for an upload on a busy machine

// A show of one colour after the other, each of one second: 80 LEDs at 100 columns a second are 6 KB a second.
void writeShow(int seconds)
{
    glow::DeviceShow show;
    show.ledCount = 80;
    show.frameRate = 100.0F;
    show.slot = 3;
    for (int i = 0; i < seconds; ++i) {
        glow::ShowPattern pattern;
        pattern.startMs = i * 1000;
        pattern.endMs = i * 1000 + 1000;
        pattern.isColour = true;
        pattern.colour = qRgb(255, i, 0);
        show.patterns << pattern;
    }
    QFile data(QStringLiteral("extemp.tmp"));
    QFile header(QStringLiteral("extemp2.tmp"));
    QVERIFY(data.open(QIODevice::WriteOnly) && header.open(QIODevice::WriteOnly));
    glow::writeDeviceImage(show, data, header);
}

// What goes over the wire: all but the header's last two bytes.
QByteArray wholeUpload()
{
    return fileBytes(QStringLiteral("extemp2.tmp")).chopped(2) + fileBytes(QStringLiteral("extemp.tmp"));
}

// One upload with all that it reported, in order.
struct Upload
{
    Upload()
    {
        auto *app = QCoreApplication::instance();
        QObject::connect(&thread, &WorkerThread::progress, app, [this](int percent, int port) {
            steps << percent;
            ports << port;
        });
        QObject::connect(&thread, &WorkerThread::expmess, app, [this](const QString &text) { words << text; });
        QObject::connect(&thread, &WorkerThread::finish, app, [this] { words << QStringLiteral("finish"); });
        QObject::connect(&thread, &WorkerThread::terminated, app, [this] { words << QStringLiteral("terminated"); });
    }

    // Runs it to its end; what it said, but for the progress.
    QString run()
    {
        thread.start();
        if (!thread.wait(longest)) {
            return QStringLiteral("does not end");
        }
        QCoreApplication::processEvents(); // delivers what the thread has said
        return words.join(u' ') + (thread.serial->isOpen() ? QStringLiteral(", port open") : QString());
    }

    WorkerThread thread;
    QVector<int> steps;
    QVector<int> ports;
    QStringList words;
};

const QString finished = QStringLiteral("finish");
const QString noDevice = QStringLiteral("偵測不到裝置！ terminated");

} // namespace

class TestUpload : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void portNames();
    void transcript();
    void pieces();
    void replies();
    void laterPort();
    void lastPortSilent();
    void noFiles();
    void vanishes();
    void earlyClosingReply();
    void cancelHoldsThePort();
    void cancelAtTheEnds();
    void hundredCancels();

private:
    QScopedPointer<PortFolder> on;
};

void TestUpload::init()
{
    on.reset(); // goes back to the folder it came from
    on.reset(new PortFolder);
}

void TestUpload::portNames()
{
    QCOMPARE(glow::portLabel(7), QStringLiteral("COM7"));
    QCOMPARE(glow::portName(99), on->port(99));
    qputenv("GLOWSMITH_PORT_PATTERN", "ports/COM%1"); // a path, wherever the system's ports are
    QCOMPARE(glow::portName(5), QDir::currentPath() + QStringLiteral("/ports/COM5"));
    QCOMPARE(glow::portLabel(5), QStringLiteral("COM5"));
    qputenv("GLOWSMITH_PORT_PATTERN", "rfcomm%1");
    QCOMPARE(glow::portName(5), QStringLiteral("rfcomm5"));
    qunsetenv("GLOWSMITH_PORT_PATTERN");
#ifdef Q_OS_WIN
    QCOMPARE(glow::portName(5), QStringLiteral("COM5"));
#else
    QCOMPARE(glow::portName(0), QStringLiteral("ttyACM0"));
    QCOMPARE(glow::portName(49), QStringLiteral("ttyACM49"));
    QCOMPARE(glow::portName(50), QStringLiteral("ttyUSB0"));
    QCOMPARE(glow::portLabel(99), QStringLiteral("ttyUSB49"));
#endif
}

void TestUpload::transcript()
{
    writeShow(20);
    const QByteArray data = fileBytes(QStringLiteral("extemp.tmp"));
    const QByteArray header = fileBytes(QStringLiteral("extemp2.tmp"));
    PropBehaviour behaviour;
    behaviour.replyMs = 30;
    SimulatedProp prop(behaviour);
    QVERIFY2(prop.start(on->port(0)), qPrintable(prop.error()));
    Upload upload;
    QCOMPARE(upload.run(), finished);
    QVERIFY(prop.waitFor(portClosed));

    const PropSession session = prop.sessions().last();
    QCOMPARE(session.track, 3);
    QCOMPARE(session.received, wholeUpload());
    QCOMPARE(session.show.problems, QStringList());
    QCOMPARE(session.show.entries.size(), 20);
    QVERIFY(session.show.loop);
    QCOMPARE(session.sent(), behaviour.greeting + behaviour.reply + behaviour.closing);
    // Order: greeting, track byte alone, reply, the rest, closing reply.
    QCOMPARE(session.events.at(0).kind, PropEvent::Sent);
    QCOMPARE(session.events.at(1).bytes, header.left(1));
    QCOMPARE(session.events.at(2).bytes, behaviour.reply);
    QCOMPARE(session.events.last().bytes, behaviour.closing);
    // Every piece but the first comes 10 ms after the one before: at no time can more have arrived than the pauses
    // since the reply allow.
    const double start = session.events.at(2).ms;
    qint64 arrived = 3 - header.size();
    for (int i = 3; i + 1 < session.events.size(); ++i) {
        arrived += session.events.at(i).bytes.size();
        QVERIFY(arrived <= 2048 * (1 + qint64((session.events.at(i).ms - start) / 10)));
    }
    const int pieces = (data.size() + 2047) / 2048;
    QCOMPARE(upload.ports, QVector<int>(pieces + 1, 0));
    QCOMPARE(upload.steps.size(), pieces + 1);
    QCOMPARE(upload.steps.last(), 100);
    for (int i = 0; i < pieces; ++i) {
        QCOMPARE(upload.steps.at(i), int(qint64(i) * 202752 / data.size()));
    }
}

void TestUpload::pieces()
{
    const QMap<int, QVector<int>> stepsOfSize = {
        {2, {0, 100}}, {2048, {0, 100}}, {2049, {0, 98, 100}}, {6144, {0, 33, 66, 100}}};
    for (auto it = stepsOfSize.begin(); it != stepsOfSize.end(); ++it) {
        writeShow(1);
        QFile data(QStringLiteral("extemp.tmp"));
        QVERIFY(data.open(QIODevice::WriteOnly));
        data.write(QByteArray(it.key(), '\xFF')); // an empty entry and foreign bytes; the host does not look
        data.close();
        SimulatedProp prop;
        QVERIFY(prop.start(on->port(0)));
        Upload upload;
        QCOMPARE(upload.run(), finished);
        QCOMPARE(upload.steps, it.value());
        QVERIFY(prop.waitFor(portClosed));
        QCOMPARE(prop.sessions().last().received, wholeUpload());
    }
}

void TestUpload::replies()
{
    const QString refused = QStringLiteral("ERROR02 terminated");
    const QPair<QByteArray, QString> rows[] = {
        {"ERR", refused},  {"no\r\nTERRIBLE", refused}, {QByteArray("\0ERR", 4), refused},
        {"err", finished}, {"\xFF\xFE\x80", finished},  {"", QStringLiteral("ERROR01 terminated")}};
    for (const auto &row : rows) {
        glow::deviceWaitMs = row.first.isEmpty() ? 1000 : 5000;
        writeShow(1);
        PropBehaviour behaviour;
        behaviour.reply = row.first;
        SimulatedProp prop(behaviour);
        QVERIFY(prop.start(on->port(0)));
        Upload upload;
        QCOMPARE(upload.run(), row.second);
        QVERIFY(prop.waitFor(portClosed));
        QCOMPARE(prop.sessions().last().received, row.second == finished ? wholeUpload() : QByteArray("\3"));
        QCOMPARE(upload.steps.isEmpty(), row.second != finished);
    }
}

void TestUpload::laterPort()
{
    // A silent port, one that answers too late, one that says nothing but a zero byte before its greeting.
    glow::deviceWaitMs = 800;
    writeShow(1);
    PropBehaviour late;
    late.greetingMs = 5000;
    PropBehaviour slow;
    slow.greetingMs = 400;
    slow.chatter = {{5, QByteArray(1, '\0')}};
    SimulatedProp silent(silentProp());
    SimulatedProp tooLate(late);
    SimulatedProp prop(slow);
    QVERIFY(silent.start(on->port(2)) && tooLate.start(on->port(40)) && prop.start(on->port(70)));
    Upload upload;
    QCOMPARE(upload.run(), finished);
    // The port that said something empty stays open while the names are counted on.
    QCOMPARE(upload.ports.last(), 71);
    QVERIFY(silent.waitFor(portClosed) && tooLate.waitFor(portClosed));
    QVERIFY(silent.sessions().last().received.isEmpty() && tooLate.sessions().last().received.isEmpty());

    slow.chatter.clear();
    SimulatedProp plain(slow);
    QVERIFY(plain.start(on->port(50)));
    Upload again;
    QCOMPARE(again.run(), finished);
    QCOMPARE(again.ports.last(), 50);
    QCOMPARE(again.thread.portIndex, 50);
}

void TestUpload::lastPortSilent()
{
    glow::deviceWaitMs = 50;
    writeShow(1);
    Upload none;
    QCOMPARE(none.run(), noDevice);
    SimulatedProp prop(silentProp());
    QVERIFY(prop.start(on->port(99)));
    Upload upload;
    QCOMPARE(upload.run(), QStringLiteral("terminated"));
    QVERIFY(prop.waitFor(portClosed));
}

void TestUpload::noFiles()
{
    writeShow(1);
    SimulatedProp prop;
    QVERIFY(prop.start(on->port(0)));
    const auto outcome = [] { return Upload().run(); };
    const QString trouble = QStringLiteral("輸出錯誤！ terminated");
    QVERIFY(QFile::rename(QStringLiteral("extemp.tmp"), QStringLiteral("kept")));
    QCOMPARE(outcome(), trouble);
    QVERIFY(QFile::rename(QStringLiteral("kept"), QStringLiteral("extemp.tmp")));
    QVERIFY(QFile::resize(QStringLiteral("extemp2.tmp"), 0)); // as a full disk leaves it
    QCOMPARE(outcome(), trouble);
    QVERIFY(QFile::remove(QStringLiteral("extemp2.tmp")));
    QCOMPARE(outcome(), trouble);
    QVERIFY(prop.waitFor([](const QVector<PropSession> &all) { return all.size() == 3 && portClosed(all); }));
    QVERIFY(prop.sessions().last().received.isEmpty());
}

void TestUpload::vanishes()
{
    writeShow(10);
    for (const int after : {1, 10, 20000}) { // at the track byte, in the header, in the data
        PropBehaviour behaviour;
        behaviour.vanishAfter = after;
        SimulatedProp prop(behaviour);
        QVERIFY(prop.start(on->port(0)));
        Upload upload;
        QCOMPARE(upload.run(), after == 1 ? QStringLiteral("ERROR01 terminated") : QStringLiteral("terminated"));
    }
    SimulatedProp prop; // it comes back, and the next upload works
    QVERIFY(prop.start(on->port(0)));
    Upload upload;
    QCOMPARE(upload.run(), finished);
}

void TestUpload::earlyClosingReply()
{
    // What the prop says while the data is on its way has arrived by the end; nothing more comes. The show takes more
    // than two seconds.
    writeShow(80);
    PropBehaviour behaviour;
    behaviour.closing.clear();
    behaviour.chatter = {{1500, "bye"}};
    SimulatedProp prop(behaviour);
    QVERIFY(prop.start(on->port(0)));
    Upload upload;
    QCOMPARE(upload.run(), finished);
    QVERIFY(prop.waitFor(portClosed));
    QCOMPARE(prop.sessions().last().received, wholeUpload());
}

void TestUpload::cancelHoldsThePort()
{
    writeShow(100);
    SimulatedProp prop;
    QVERIFY(prop.start(on->port(0)));
    auto *upload = new Upload; // never destroyed, as in the program
    upload->thread.start();
    QTRY_VERIFY_WITH_TIMEOUT(upload->steps.size() > 3, longest);
    upload->thread.kill();
    QVERIFY(upload->thread.wait(longest));
    QCoreApplication::processEvents();
    QVERIFY(upload->words.isEmpty());
    QVERIFY(prop.sessions().last().open);
    Upload next;
    QCOMPARE(next.run(), noDevice);
}

void TestUpload::cancelAtTheEnds()
{
    writeShow(1);
    for (int round = 0; round < 50; ++round) {
        auto *upload = new Upload;
        upload->thread.start(QThread::InheritPriority);
        upload->thread.kill(); // has hardly begun
        QVERIFY(upload->thread.wait(longest));
        QCoreApplication::processEvents();
        QCOMPARE(upload->words, QStringList());
    }
    Upload upload;
    upload.thread.kill(); // never started
    QCOMPARE(upload.run(), noDevice);
    upload.thread.kill(); // long over
    upload.thread.kill();
    QVERIFY(upload.thread.isFinished());
}

void TestUpload::hundredCancels()
{
    writeShow(4);
    QRandomGenerator random(4711);
    int cut = 0;
    for (int round = 0; round < 100; ++round) {
        PropBehaviour behaviour;
        behaviour.greetingMs = 5;
        SimulatedProp prop(behaviour);
        QVERIFY(prop.start(on->port(round)));
        auto *upload = new Upload;
        upload->thread.start();
        QTest::qWait(static_cast<int>(random.bounded(220))); // the moments are the point
        upload->thread.kill();
        QVERIFY(upload->thread.wait(longest));
        QCoreApplication::processEvents();
        cut += upload->words.isEmpty() ? 1 : 0;
    }
    QVERIFY2(cut > 50, qPrintable(QString::number(cut)));
    // Memory, debug stream and event queues still work, and so does an upload, on a port that nobody holds.
    init();
    writeShow(1);
    SimulatedProp prop;
    QVERIFY(prop.start(on->port(0)));
    Upload upload;
    QCOMPARE(upload.run(), finished);
}

QTEST_MAIN(TestUpload)
#include "test_upload.moc"
