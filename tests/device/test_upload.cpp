// The upload, against a simulated prop on a real pseudo-terminal.
#include "device/devicetest.h"

#include <QRandomGenerator>

namespace {

const QString finished = "finish";
const QString noDevice = "偵測不到裝置！ terminated";

// What an upload said that was cancelled so soon.
QStringList cancelledAfter(int ms)
{
    auto *upload = new Upload; // never destroyed, as in the program
    upload->thread.start();
    if (ms > 0) {
        QTest::qWait(ms); // the moments are the point
    }
    upload->thread.kill();
    if (!upload->thread.wait(longest)) {
        return {"does not end"};
    }
    QCoreApplication::processEvents();
    return upload->words;
}

} // namespace

class TestUpload : public DeviceTest
{
    Q_OBJECT

private slots:
    void portNames();
    void transcript();
    void pieces();
    void outcomes();
    void laterPort();
    void lastPortSilent();
    void noFiles();
    void earlyClosingReply();
    void cancels();

private:
    void writeShow(int seconds)
    {
        ui->prop_track->setCurrentIndex(2);
        addSeconds(seconds);
        window->buildDeviceImage();
    }
};

void TestUpload::portNames()
{
    QCOMPARE(glow::portLabel(7), QString("COM7"));
    QCOMPARE(glow::portName(99), env->path("COM99"));
    qputenv("GLOWSMITH_PORT_PATTERN", "ports/COM%1"); // a path, wherever the system's ports are
    QCOMPARE(glow::portName(5), QDir::currentPath() + "/ports/COM5");
    QCOMPARE(glow::portLabel(5), QString("COM5"));
    qputenv("GLOWSMITH_PORT_PATTERN", "rfcomm%1");
    QCOMPARE(glow::portName(5), QString("rfcomm5"));
    qunsetenv("GLOWSMITH_PORT_PATTERN");
#ifdef Q_OS_WIN
    QCOMPARE(glow::portName(5), QString("COM5"));
#else
    QCOMPARE(glow::portName(0), QString("ttyACM0"));
    QCOMPARE(glow::portName(49), QString("ttyACM49"));
    QCOMPARE(glow::portName(50), QString("ttyUSB0"));
    QCOMPARE(glow::portLabel(99), QString("ttyUSB49"));
#endif
}

void TestUpload::transcript()
{
    writeShow(20);
    const QByteArray data = contentOf("extemp.tmp");
    const QByteArray header = contentOf("extemp2.tmp");
    PropBehaviour behaviour;
    behaviour.replyMs = 30;
    Prop prop(0, behaviour);
    Upload upload;
    QCOMPARE(upload.run(), finished);

    const PropSession session = prop.ended();
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
    writeShow(1);
    const QMap<int, QVector<int>> stepsOfSize = {
        {2, {0, 100}}, {2048, {0, 100}}, {2049, {0, 98, 100}}, {6144, {0, 33, 66, 100}}};
    for (auto it = stepsOfSize.begin(); it != stepsOfSize.end(); ++it) {
        // An empty entry and foreign bytes; the host does not look.
        QVERIFY(put("extemp.tmp", QByteArray(it.key(), '\xFF')));
        Prop prop;
        Upload upload;
        QCOMPARE(upload.run(), finished);
        QCOMPARE(upload.steps, it.value());
        QCOMPARE(prop.ended().received, wholeUpload());
    }
}

void TestUpload::outcomes()
{
    writeShow(10);
    const QString refused = "ERROR02 terminated";
    const QString unanswered = "ERROR01 terminated";
    const struct
    {
        QByteArray reply;
        int vanishAfter; // bytes: at the track byte, in the header, in the data; -1: stays
        QString outcome;
    } rows[] = {{"OK", 1, unanswered},
                {"OK", 10, "terminated"},
                {"OK", 20000, "terminated"},
                {"", -1, unanswered},
                {"ERR", -1, refused},
                {"no\r\nTERRIBLE", -1, refused},
                {QByteArray("\0ERR", 4), -1, refused},
                {"err", -1, finished},
                {"\xFF\xFE\x80", -1, finished}};
    for (const auto &row : rows) {
        deviceWaitMs = row.reply.isEmpty() ? 1000 : 5000;
        PropBehaviour behaviour;
        behaviour.reply = row.reply;
        behaviour.vanishAfter = row.vanishAfter;
        Prop prop(0, behaviour);
        Upload upload;
        QCOMPARE(upload.run(), row.outcome);
        if (row.vanishAfter < 0) {
            QCOMPARE(prop.ended().received, row.outcome == finished ? wholeUpload() : QByteArray("\3"));
            QCOMPARE(upload.steps.isEmpty(), row.outcome != finished);
        }
    }
}

void TestUpload::laterPort()
{
    // A silent port, one that answers too late, one that says nothing but a zero byte before its greeting.
    deviceWaitMs = 800;
    writeShow(1);
    PropBehaviour slow = greets("Wait", 400);
    slow.chatter = {{5, QByteArray(1, '\0')}};
    Prop silent(2, silence);
    Prop tooLate(40, greets("Wait", 5000));
    const Prop prop(70, slow);
    Upload upload;
    QCOMPARE(upload.run(), finished);
    // The port that said something empty stays open while the names are counted on.
    QCOMPARE(upload.ports.last(), 71);
    QVERIFY(silent.ended().received.isEmpty() && tooLate.ended().received.isEmpty());

    const Prop plain(50, greets("Wait", 400));
    Upload again;
    QCOMPARE(again.run(), finished);
    QCOMPARE(again.ports.last(), 50);
    QCOMPARE(again.thread.portIndex, 50);
}

void TestUpload::lastPortSilent()
{
    deviceWaitMs = 50;
    writeShow(1);
    QCOMPARE(Upload().run(), noDevice);
    Prop prop(99, silence);
    QCOMPARE(Upload().run(), QString("terminated"));
    prop.ended();
}

void TestUpload::noFiles()
{
    writeShow(1);
    Prop prop;
    const QString trouble = "輸出錯誤！ terminated";
    for (const char *name : {"extemp.tmp", "extemp2.tmp"}) {
        QVERIFY(QFile::rename(name, "kept"));
        QCOMPARE(Upload().run(), trouble);
        QVERIFY(QFile::rename("kept", name));
    }
    QVERIFY(put("extemp2.tmp")); // empty, as a full disk leaves it
    QCOMPARE(Upload().run(), trouble);
    QVERIFY(prop.waitFor([](const QVector<PropSession> &all) { return all.size() == 3; }));
    QVERIFY(prop.ended().received.isEmpty());
}

void TestUpload::earlyClosingReply()
{
    // What the prop says while the data is on its way has arrived by the end; nothing more comes. The show takes more
    // than two seconds.
    writeShow(80);
    PropBehaviour behaviour;
    behaviour.closing.clear();
    behaviour.chatter = {{1500, "bye"}};
    Prop prop(0, behaviour);
    QCOMPARE(Upload().run(), finished);
    QCOMPARE(prop.ended().received, wholeUpload());
}

void TestUpload::cancels()
{
    writeShow(4);
    for (int round = 0; round < 50; ++round) {
        QCOMPARE(cancelledAfter(0), QStringList());
    }
    Upload upload;
    upload.thread.kill(); // never started
    QCOMPARE(upload.run(), noDevice);
    upload.thread.kill(); // long over
    upload.thread.kill();
    QVERIFY(upload.thread.isFinished());

    QRandomGenerator random(4711);
    int cut = 0;
    for (int round = 0; round < 100; ++round) {
        const Prop prop(round, greets("Wait", 5));
        cut += cancelledAfter(static_cast<int>(random.bounded(220))).isEmpty() ? 1 : 0;
    }
    QVERIFY2(cut > 50, qPrintable(QString::number(cut)));
    // Memory, debug stream and event queues still work, and so does an upload, on a port that nobody holds.
    init();
    writeShow(1);
    const Prop prop;
    QCOMPARE(Upload().run(), finished);
}

QTEST_MAIN(TestUpload)
#include "test_upload.moc"
