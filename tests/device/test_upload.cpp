// The upload, against a simulated prop on a real pseudo-terminal.
#include "device/deviceimage.h"
#include "device/portnames.h"
#include "device/portscan.h"
#include "device/workerthread.h"
#include "prop/simulatedprop.h"

#include <QLoggingCategory>
#include <QRandomGenerator>
#include <QSerialPort>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

namespace {

QByteArray contents(const QString &name)
{
    QFile file(name);
    file.open(QIODevice::ReadOnly);
    return file.readAll();
}

// A show of one colour after the other, each of one second: 80 LEDs at 100 columns a second are 6 KB a second.
glow::DeviceShow showOf(int seconds)
{
    glow::DeviceShow show;
    show.ledCount = 80;
    show.ledsShown = 80;
    show.frameRate = 100.0F;
    show.rateShown = 100;
    show.slot = 3;
    for (int i = 0; i < seconds; ++i) {
        glow::ShowPattern pattern;
        pattern.startMs = i * 1000;
        pattern.endMs = i * 1000 + 1000;
        pattern.isColour = true;
        pattern.colour = qRgb(255, i, 0);
        show.patterns << pattern;
    }
    return show;
}

void writeFiles(const glow::DeviceShow &show)
{
    QFile data(QStringLiteral("extemp.tmp"));
    QFile header(QStringLiteral("extemp2.tmp"));
    QVERIFY(data.open(QIODevice::WriteOnly) && header.open(QIODevice::WriteOnly));
    glow::writeDeviceImage(show, data, header);
}

bool ended(const QVector<PropSession> &sessions)
{
    return !sessions.isEmpty() && !sessions.last().open;
}

// One upload with all that it reported, in order.
struct Upload
{
    Upload()
    {
        QObject::connect(&thread, &WorkerThread::progress, QCoreApplication::instance(), [this](int percent, int port) {
            steps << percent;
            ports << port;
        });
        QObject::connect(&thread, &WorkerThread::expmess, QCoreApplication::instance(),
                         [this](const QString &text) { words << text; });
        QObject::connect(&thread, &WorkerThread::finish, QCoreApplication::instance(),
                         [this] { words << QStringLiteral("finish"); });
        QObject::connect(&thread, &WorkerThread::terminated, QCoreApplication::instance(),
                         [this] { words << QStringLiteral("terminated"); });
    }

    bool run()
    {
        thread.start();
        const bool over = thread.wait(20000);
        QCoreApplication::processEvents(); // delivers what the thread has said
        return over;
    }

    WorkerThread thread;
    QVector<int> steps;
    QVector<int> ports;
    QStringList words;
};

} // namespace

class TestUpload : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void portNames();
    void transcript();
    void pieces_data();
    void pieces();
    void replies_data();
    void replies();
    void laterPort();
    void noPort();
    void lastPortSilent();
    void noAnswerToTrack();
    void noFiles();
    void vanishes_data();
    void vanishes();
    void earlyClosingReply();
    void cancelHoldsThePort();
    void cancelAtTheEnds();
    void hundredCancels();

private:
    QString port(int number) const { return dir->filePath(QStringLiteral("COM%1").arg(number)); }

    QString oldPath;
    std::unique_ptr<QTemporaryDir> dir;
};

void TestUpload::initTestCase()
{
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    oldPath = QDir::currentPath();
}

void TestUpload::init()
{
    dir = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir::setCurrent(dir->path()));
    qputenv("GLOWSMITH_PORT_PATTERN", QFile::encodeName(dir->filePath(QStringLiteral("COM%1"))));
    glow::deviceWaitMs = 5000;
}

void TestUpload::cleanup()
{
    QDir::setCurrent(oldPath);
    dir.reset();
}

void TestUpload::portNames()
{
    QCOMPARE(glow::portLabel(7), QStringLiteral("COM7"));
    QCOMPARE(glow::portName(99), port(99));
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
    writeFiles(showOf(20));
    const QByteArray data = contents(QStringLiteral("extemp.tmp"));
    const QByteArray header = contents(QStringLiteral("extemp2.tmp"));
    PropBehaviour behaviour;
    behaviour.replyMs = 30;
    SimulatedProp prop(behaviour);
    QVERIFY2(prop.start(port(0)), qPrintable(prop.error()));
    Upload upload;
    QVERIFY(upload.run());
    QCOMPARE(upload.words, QStringList{QStringLiteral("finish")});
    QVERIFY(!upload.thread.serial->isOpen());
    QVERIFY(prop.waitFor(ended));

    const PropSession session = prop.sessions().last();
    QCOMPARE(session.track, 3);
    QCOMPARE(session.received, header.left(header.size() - 2) + data);
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
    qint64 arrived = 1 - header.left(header.size() - 2).size();
    int lulls = 0;
    double before = start;
    for (int i = 3; i + 1 < session.events.size(); ++i) {
        const PropEvent &event = session.events.at(i);
        arrived += event.bytes.size();
        QVERIFY2(arrived <= 2048 * (1 + qint64((event.ms - start) / 10)), qPrintable(QString::number(event.ms)));
        lulls += event.ms - before > 7 && arrived % 2048 != 0 ? 1 : 0;
        before = event.ms;
    }
    // Nearly every lull ends at the end of a piece of 2048 bytes; a busy machine may cut some elsewhere.
    const int pieces = int(data.size() + 2047) / 2048;
    QCOMPARE(upload.steps.size(), pieces + 1);
    QVERIFY(lulls <= 1 + pieces / 5);
    QCOMPARE(upload.ports, QVector<int>(pieces + 1, 0));
    QCOMPARE(upload.steps.first(), 0);
    QCOMPARE(upload.steps.last(), 100);
    for (int i = 0; i < pieces; ++i) {
        QCOMPARE(upload.steps.at(i), int(qint64(i) * 202752 / data.size()));
    }
}

void TestUpload::pieces_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<QVector<int>>("steps");

    QTest::newRow("smallest") << 1 << QVector<int>{0, 100};
    QTest::newRow("one piece") << 2048 << QVector<int>{0, 100};
    QTest::newRow("one byte more") << 2049 << QVector<int>{0, 98, 100};
    QTest::newRow("three") << 6144 << QVector<int>{0, 33, 66, 100};
}

void TestUpload::pieces()
{
    QFETCH(int, size);
    QFETCH(QVector<int>, steps);
    writeFiles(showOf(1));
    QFile data(QStringLiteral("extemp.tmp"));
    QVERIFY(data.open(QIODevice::WriteOnly));
    data.write(QByteArray(size, '\xFF')); // no show, but the host does not look
    data.close();
    PropBehaviour behaviour;
    behaviour.closing.clear();
    behaviour.chatter = {{200, "done"}};
    SimulatedProp prop(behaviour);
    QVERIFY(prop.start(port(0)));
    Upload upload;
    QVERIFY(upload.run());
    QCOMPARE(upload.words, QStringList{QStringLiteral("finish")});
    QCOMPARE(upload.steps, steps);
    QVERIFY(prop.waitFor(ended));
    QVERIFY(prop.sessions().last().received.endsWith("0000" + QByteArray(size, '\xFF')));
}

void TestUpload::replies_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<bool>("refused");

    QTest::newRow("ERR") << QByteArray("ERR") << true;
    QTest::newRow("inside a word") << QByteArray("no\r\nTERRIBLE") << true;
    QTest::newRow("behind a zero byte") << QByteArray("\0ERR", 4) << true;
    QTest::newRow("lower case") << QByteArray("err") << false;
    QTest::newRow("no text") << QByteArray("\xFF\xFE\x80") << false;
}

void TestUpload::replies()
{
    QFETCH(QByteArray, reply);
    QFETCH(bool, refused);
    writeFiles(showOf(1));
    PropBehaviour behaviour;
    behaviour.reply = reply;
    SimulatedProp prop(behaviour);
    QVERIFY(prop.start(port(0)));
    Upload upload;
    QVERIFY(upload.run());
    QVERIFY(prop.waitFor(ended));
    QVERIFY(!upload.thread.serial->isOpen());
    if (refused) {
        QCOMPARE(upload.words, QStringList({QStringLiteral("ERROR02"), QStringLiteral("terminated")}));
        QCOMPARE(prop.sessions().last().received, QByteArray("\3"));
        QVERIFY(upload.steps.isEmpty());
    } else {
        QCOMPARE(upload.words, QStringList{QStringLiteral("finish")});
    }
}

void TestUpload::laterPort()
{
    // Two silent ports, one that answers too late, one that says nothing but a zero byte before its greeting.
    glow::deviceWaitMs = 250;
    writeFiles(showOf(1));
    PropBehaviour silent;
    silent.greeting.clear();
    SimulatedProp first(silent);
    SimulatedProp second(silent);
    PropBehaviour late;
    late.greetingMs = 2000;
    SimulatedProp third(late);
    PropBehaviour slow;
    slow.chatter = {{5, QByteArray(1, '\0')}};
    slow.greetingMs = 150;
    SimulatedProp prop(slow);
    QVERIFY(first.start(port(2)) && second.start(port(3)) && third.start(port(40)) && prop.start(port(70)));
    Upload upload;
    QVERIFY(upload.run());
    QCOMPARE(upload.words, QStringList{QStringLiteral("finish")});
    // The port that said something empty stays open while the names are counted on.
    QCOMPARE(upload.ports.last(), 71);
    QVERIFY(first.waitFor(ended) && second.waitFor(ended) && third.waitFor(ended));
    QVERIFY(first.sessions().last().received.isEmpty() && third.sessions().last().received.isEmpty());

    slow.chatter.clear();
    SimulatedProp plain(slow);
    QVERIFY(plain.start(port(50)));
    Upload again;
    QVERIFY(again.run());
    QCOMPARE(again.ports.last(), 50);
    QCOMPARE(again.thread.portIndex, 50);
}

void TestUpload::noPort()
{
    writeFiles(showOf(1));
    Upload upload;
    QVERIFY(upload.run());
    QCOMPARE(upload.words, QStringList({QStringLiteral("偵測不到裝置！"), QStringLiteral("terminated")}));
    QVERIFY(upload.steps.isEmpty());
    QVERIFY(!upload.thread.serial->isOpen());
}

void TestUpload::lastPortSilent()
{
    glow::deviceWaitMs = 50;
    writeFiles(showOf(1));
    PropBehaviour silent;
    silent.greeting.clear();
    SimulatedProp prop(silent);
    QVERIFY(prop.start(port(99)));
    Upload upload;
    QVERIFY(upload.run());
    QCOMPARE(upload.words, QStringList{QStringLiteral("terminated")});
    QVERIFY(prop.waitFor(ended));
}

void TestUpload::noAnswerToTrack()
{
    glow::deviceWaitMs = 150;
    writeFiles(showOf(1));
    PropBehaviour behaviour;
    behaviour.reply.clear();
    SimulatedProp prop(behaviour);
    QVERIFY(prop.start(port(0)));
    Upload upload;
    QVERIFY(upload.run());
    QCOMPARE(upload.words, QStringList({QStringLiteral("ERROR01"), QStringLiteral("terminated")}));
    QVERIFY(prop.waitFor(ended));
    QCOMPARE(prop.sessions().last().received, QByteArray("\3"));
}

void TestUpload::noFiles()
{
    writeFiles(showOf(1));
    const QStringList expected = {QStringLiteral("輸出錯誤！"), QStringLiteral("terminated")};
    SimulatedProp prop;
    QVERIFY(prop.start(port(0)));
    QVERIFY(QFile::rename(QStringLiteral("extemp.tmp"), QStringLiteral("kept")));
    Upload noData;
    QVERIFY(noData.run());
    QCOMPARE(noData.words, expected);
    QVERIFY(QFile::rename(QStringLiteral("kept"), QStringLiteral("extemp.tmp")));
    QVERIFY(QFile::resize(QStringLiteral("extemp2.tmp"), 0)); // as a full disk leaves it
    Upload emptyHeader;
    QVERIFY(emptyHeader.run());
    QCOMPARE(emptyHeader.words, expected);
    QVERIFY(QFile::remove(QStringLiteral("extemp2.tmp")));
    Upload noHeader;
    QVERIFY(noHeader.run());
    QCOMPARE(noHeader.words, expected);
    QVERIFY(prop.waitFor([](const QVector<PropSession> &all) { return all.size() == 3 && !all.last().open; }));
    QVERIFY(prop.sessions().last().received.isEmpty());
}

void TestUpload::vanishes_data()
{
    QTest::addColumn<int>("after");

    QTest::newRow("at the track byte") << 1;
    QTest::newRow("in the header") << 10;
    QTest::newRow("in the data") << 20000;
}

void TestUpload::vanishes()
{
    QFETCH(int, after);
    writeFiles(showOf(10));
    PropBehaviour behaviour;
    behaviour.vanishAfter = after;
    {
        SimulatedProp prop(behaviour);
        QVERIFY(prop.start(port(0)));
        Upload upload;
        QVERIFY2(upload.run(), "the upload should end");
        QCOMPARE(upload.words.last(), QStringLiteral("terminated"));
        if (after == 1) {
            QCOMPARE(upload.words.first(), QStringLiteral("ERROR01"));
        } else {
            QCOMPARE(upload.words.size(), 1);
        }
        QVERIFY(!upload.thread.serial->isOpen());
    }
    // It comes back, and the next upload works.
    SimulatedProp prop;
    QVERIFY(prop.start(port(0)));
    Upload upload;
    QVERIFY(upload.run());
    QCOMPARE(upload.words, QStringList{QStringLiteral("finish")});
}

void TestUpload::earlyClosingReply()
{
    // What the prop says while the data is on its way has arrived by the end; nothing more comes.
    writeFiles(showOf(10));
    PropBehaviour behaviour;
    behaviour.closing.clear();
    behaviour.chatter = {{100, "bye"}};
    SimulatedProp prop(behaviour);
    QVERIFY(prop.start(port(0)));
    Upload upload;
    QVERIFY2(upload.run(), "the closing wait sleeps on bytes that are there");
    QCOMPARE(upload.words, QStringList{QStringLiteral("finish")});
    QVERIFY(prop.waitFor(ended));
    QCOMPARE(prop.sessions().last().received.size(),
             contents(QStringLiteral("extemp.tmp")).size() + contents(QStringLiteral("extemp2.tmp")).size() - 2);
}

void TestUpload::cancelHoldsThePort()
{
    writeFiles(showOf(100));
    SimulatedProp prop;
    QVERIFY(prop.start(port(0)));
    auto *upload = new Upload; // never destroyed, as in the program
    upload->thread.start();
    QTRY_VERIFY(upload->steps.size() > 3);
    upload->thread.kill();
    QVERIFY(upload->thread.wait(1000));
    QCoreApplication::processEvents();
    QVERIFY(upload->words.isEmpty());
    QVERIFY(prop.sessions().last().open);
    Upload next;
    QVERIFY(next.run());
    QCOMPARE(next.words, QStringList({QStringLiteral("偵測不到裝置！"), QStringLiteral("terminated")}));
}

void TestUpload::cancelAtTheEnds()
{
    writeFiles(showOf(1));
    for (int round = 0; round < 50; ++round) {
        auto *upload = new Upload;
        upload->thread.start(QThread::InheritPriority);
        upload->thread.kill(); // has hardly begun
        QVERIFY(upload->thread.wait(1000));
        QCoreApplication::processEvents();
        QCOMPARE(upload->words, QStringList());
    }
    Upload upload;
    upload.thread.kill(); // never started
    QVERIFY(upload.run());
    QCOMPARE(upload.words.size(), 2);
    upload.thread.kill(); // long over
    upload.thread.kill();
    QVERIFY(upload.thread.isFinished());
}

void TestUpload::hundredCancels()
{
    writeFiles(showOf(4));
    QRandomGenerator random(4711);
    int cut = 0;
    for (int round = 0; round < 100; ++round) {
        PropBehaviour behaviour;
        behaviour.greetingMs = 5;
        SimulatedProp prop(behaviour);
        QVERIFY(prop.start(port(round % 100)));
        auto *upload = new Upload;
        upload->thread.start();
        QTest::qWait(static_cast<int>(random.bounded(220)));
        upload->thread.kill();
        QVERIFY(upload->thread.wait(5000));
        QCoreApplication::processEvents();
        cut += upload->words.isEmpty() ? 1 : 0;
    }
    QVERIFY2(cut > 50, qPrintable(QString::number(cut)));
    // Memory, debug stream and event queues still work, and so does an upload, on a port that nobody holds.
    cleanup();
    init();
    writeFiles(showOf(1));
    SimulatedProp prop;
    QVERIFY(prop.start(port(0)));
    Upload upload;
    QVERIFY(upload.run());
    QCOMPARE(upload.words, QStringList{QStringLiteral("finish")});
}

QTEST_GUILESS_MAIN(TestUpload)
#include "test_upload.moc"
