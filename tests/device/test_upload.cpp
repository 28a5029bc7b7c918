// The upload, against a simulated prop on a real pseudo-terminal.
#include "device/devicetest.h"

#include <QRandomGenerator>
#include <QSemaphore>

#include <atomic>

namespace {

const QString finished = "finish";
const QString noDevice = "偵測不到裝置！ terminated";
const QString unreadable = "輸出錯誤！ terminated";
const QString unanswered = "ERROR01 terminated";
const QString refused = "ERROR02 terminated";

} // namespace

class TestUpload : public DeviceTest
{
    Q_OBJECT

private slots:
    void portNames()
    {
        const auto both = [](const char *pattern, int number) {
            pattern == nullptr ? qunsetenv("GLOWSMITH_PORT_PATTERN") : qputenv("GLOWSMITH_PORT_PATTERN", pattern);
            return glow::portName(number) + ' ' + glow::portLabel(number);
        };
        QCOMPARE(glow::portName(99), env->path("COM99"));
        QCOMPARE(both("ports/COM%1", 5), QDir::currentPath() + "/ports/COM5 COM5"); // a path, wherever the system's are
        QCOMPARE(both("rfcomm%1", 5), QString("rfcomm5 rfcomm5"));
#ifdef Q_OS_WIN
        QCOMPARE(both(nullptr, 5), QString("COM5 COM5"));
#else
        QCOMPARE(both(nullptr, 0), QString("ttyACM0 ttyACM0"));
        QCOMPARE(both(nullptr, 49), QString("ttyACM49 ttyACM49"));
        QCOMPARE(both(nullptr, 50), QString("ttyUSB0 ttyUSB0"));
#endif
    }

    void transcript()
    {
        writeShow(12);
        PropBehaviour behaviour;
        behaviour.replyMs = 30;
        Prop prop(0, behaviour);
        Upload upload;
        QCOMPARE(upload.run(), finished);

        const PropSession session = prop.ended();
        QCOMPARE(session.received, wholeUpload());
        QCOMPARE(session.show.problems, QStringList());
        QCOMPARE(session.sent(), behaviour.greeting + behaviour.reply + behaviour.closing);
        // Order: greeting, track byte alone, reply, the rest, closing reply.
        QCOMPARE(session.events.at(1).bytes, QByteArray("\3"));
        QCOMPARE(session.events.at(2).bytes, behaviour.reply);
        QCOMPARE(session.events.last().bytes, behaviour.closing);
        // Every piece but the first comes 10 ms after the one before: at no time can more have arrived than the pauses
        // since the reply allow.
        const double start = session.events.at(2).ms;
        qint64 arrived = 3 - contentOf("extemp2.tmp").size();
        for (int i = 3; i + 1 < session.events.size(); ++i) {
            arrived += session.events.at(i).bytes.size();
            QVERIFY(arrived <= 2048 * (1 + qint64((session.events.at(i).ms - start) / 10)));
        }
    }

    void pieces()
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

    void outcomes()
    {
        writeShow(4);
        deviceWaitMs = 500;
        const QPair<QByteArray, QString> replies[] = {{"", unanswered},
                                                      {"no\r\nTERRIBLE", refused},
                                                      {QByteArray("\0ERR", 4), refused},
                                                      {"err", finished},
                                                      {"\xFF\xFE\x80", finished}};
        for (const auto &[reply, outcome] : replies) {
            Prop prop(0, greets("Wait", 5, reply));
            Upload upload;
            QCOMPARE(upload.run(), outcome);
            QCOMPARE(prop.ended().received, outcome == finished ? wholeUpload() : QByteArray("\3"));
            QCOMPARE(upload.steps.isEmpty(), outcome != finished);
        }
        // Pulled out behind the track byte, in the header, in the data, before the last byte.
        for (int moment = 0; moment < 10; ++moment) {
            PropBehaviour behaviour = greets("Wait", 5);
            behaviour.vanishAfter = moment < 3 ? 1 + moment * 9 : 1 + moment * (wholeUpload().size() - 2) / 9;
            const Prop prop(0, behaviour);
            QCOMPARE(Upload().run(), moment == 0 ? unanswered : "terminated");
        }
        Prop prop;
        for (const char *name : {"extemp.tmp", "extemp2.tmp"}) {
            QVERIFY(QFile::rename(name, "kept"));
            QCOMPARE(Upload().run(), unreadable);
            QVERIFY(QFile::rename("kept", name));
        }
        QVERIFY(put("extemp2.tmp")); // empty, as a full disk leaves it
        QCOMPARE(Upload().run(), unreadable);
        QVERIFY(prop.waitFor([](const QVector<PropSession> &all) { return all.size() == 3; }));
        QVERIFY(prop.ended().received.isEmpty());
    }

    void ports()
    {
        deviceWaitMs = 500;
        writeShow(1);
        {
            Prop last(99, silence);
            QCOMPARE(Upload().run(), QString("terminated"));
            last.ended();
        }
        QCOMPARE(Upload().run(), noDevice);
        // A silent port, and one that says nothing but a zero byte before its greeting: that one stays open while the
        // names are counted on.
        PropBehaviour slow = greets("Wait", 200);
        slow.chatter = {{5, QByteArray(1, '\0')}};
        Prop silent(2, silence);
        const Prop prop(70, slow);
        Upload upload;
        QCOMPARE(upload.run(), finished);
        QCOMPARE(upload.ports.last(), 71);
        QVERIFY(silent.ended().received.isEmpty());

        const Prop plain(50, greets("Wait", 200));
        Upload again;
        QCOMPARE(again.run(), finished);
        QCOMPARE(again.ports.last(), 50);
    }

    // What the prop says while the data is on its way has arrived by the end; nothing more comes.
    void earlyClosingReply()
    {
        writeShow(45); // takes more than 1.3 seconds
        PropBehaviour behaviour;
        behaviour.closing.clear();
        behaviour.chatter = {{1000, "bye"}};
        Prop prop(0, behaviour);
        QCOMPARE(Upload().run(), finished);
        QCOMPARE(prop.ended().received, wholeUpload());
    }

    // The kill comes while the thread is inside the port's own work and still has a while to go there.
    void standsStillBehindTheKill()
    {
        writeShow(10);
        for (const int piece : {1, 9}) {
            Prop prop(piece);
            auto *upload = new Upload;
            QSemaphore inside;
            std::atomic<bool> passed{false};
            const auto dawdle = [&] {
                inside.release();
                QThread::msleep(40);
                passed = true;
            };
            connect(&upload->thread, &WorkerThread::progress, [&, upload] {
                if (upload->steps.size() == piece) {
                    connect(upload->thread.serial, &QSerialPort::bytesWritten, dawdle);
                }
            });
            upload->thread.start();
            QVERIFY(inside.tryAcquire(1, longest));
            upload->thread.kill();
            QVERIFY(passed);
            QVERIFY(upload->kill());
            QCOMPARE(upload->steps.size(), piece);
            QVERIFY(upload->words.isEmpty() && upload->thread.serial->isOpen());
            upload->thread.serial->close(); // so that the prop comes to its end
            QCOMPARE(prop.ended().received, wholeUpload().left(contentOf("extemp2.tmp").size() - 2 + piece * 2048));
        }
    }

    void killsAtAnyMoment()
    {
        writeShow(4);
        QRandomGenerator random(4711);
        int cut = 0;
        for (int round = 0; round < 80; ++round) {
            PropBehaviour behaviour = greets("Wait", 5);
            behaviour.closing = round % 2 == 0 ? "" : "END"; // never, or soon
            const QScopedPointer<Prop> prop(round < 40 ? nullptr : new Prop(round, behaviour));
            auto *upload = new Upload;
            upload->thread.start();
            if (prop != nullptr) {
                QTest::qWait(static_cast<int>(random.bounded(180))); // the moments are the point
            }
            QVERIFY(upload->kill());
            cut += upload->words.isEmpty() ? 1 : 0;
        }
        QVERIFY2(cut > 50, qPrintable(QString::number(cut)));
        // Memory, debug stream and event queues still work, and so does an upload, on a port that nobody holds.
        init();
        writeShow(1);
        Upload upload;
        upload.thread.kill(); // never started
        const Prop prop;
        QCOMPARE(upload.run(), finished);
        QVERIFY(upload.kill()); // long over
    }

private:
    void writeShow(int seconds)
    {
        ui->prop_track->setCurrentIndex(2);
        addSeconds(seconds);
        window->buildDeviceImage();
    }
};

QTEST_MAIN(TestUpload)
#include "test_upload.moc"
