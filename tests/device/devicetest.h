// A test of the device link: the real window, and ports that exist only where a simulated prop makes one.
#pragma once

#include "device/workerthread.h"
#include "prop/simulatedprop.h"
#include "show/model/timescale.h"
#include "show/wire/portnames.h"
#include "show/wire/portscan.h"
#include "support/windowtest.h"

#include <QLoggingCategory>
#include <QSerialPort>

constexpr int longest = 60000; // milliseconds, for what takes its time on a busy machine

inline PropBehaviour greets(const QByteArray &greeting, int afterMs = 20, const QByteArray &reply = "OK")
{
    PropBehaviour behaviour;
    behaviour.greeting = greeting;
    behaviour.greetingMs = afterMs;
    behaviour.reply = reply;
    return behaviour;
}

const PropBehaviour silence = greets({});

// A prop on the port of that number.
class Prop : public SimulatedProp
{
public:
    explicit Prop(int number = 0, const PropBehaviour &behaviour = {})
        : SimulatedProp(behaviour)
    {
        QVERIFY2(start(glow::portName(number)), qPrintable(error()));
    }

    // The last session, once the host has closed the port.
    PropSession ended()
    {
        if (!waitFor([](const QVector<PropSession> &all) { return !all.isEmpty() && !all.last().open; })) {
            QTest::qFail("the host does not close the port", __FILE__, __LINE__);
        }
        return session(sessions().size() - 1);
    }
};

// An upload of the files in the working directory, with all that it reported, in order and as it was emitted. One that
// was killed is never destroyed, as in the program.
struct Upload
{
    Upload()
    {
        thread.waitMs = deviceWaitMs;
        QObject::connect(&thread, &WorkerThread::progress, [this](int percent, int port) {
            steps << percent;
            ports << port;
        });
        QObject::connect(&thread, &WorkerThread::expmess, [this](const QString &text) { words << text; });
        QObject::connect(&thread, &WorkerThread::finish, [this] { words << "finish"; });
        QObject::connect(&thread, &WorkerThread::terminated, [this] { words << "terminated"; });
    }

    // Runs it to its end; what it said, but for the progress.
    QString run()
    {
        thread.start();
        if (!thread.wait(longest)) {
            return "does not end";
        }
        return words.join(' ') + (thread.serial->isOpen() ? ", port open" : "");
    }

    // Kills it; false if it said anything behind that, or does not end.
    bool kill()
    {
        thread.kill();
        const int said = steps.size() + words.size();
        return thread.wait(longest) && said == steps.size() + words.size();
    }

    WorkerThread thread;
    QVector<int> steps;
    QVector<int> ports;
    QStringList words;
};

class DeviceTest : public WindowTest
{
    Q_OBJECT

protected slots:
    // The window is not shown: its preview would keep the machine busy while times are measured.
    void init()
    {
        QLoggingCategory::setFilterRules("default.debug=false");
        cleanup();
        env.reset(new TestEnv);
        deviceWaitMs = 5000;
        qputenv("GLOWSMITH_PORT_PATTERN", QFile::encodeName(env->path("COM%1")));
        msPerPixel = 10.0F;
        window.reset(new MainWindow);
        window->propWaitMs = deviceWaitMs;
        ui = window->ui;
        window->gadgetGroup->actions().at(0)->trigger(); // a custom prop
        setLeds(2, 10);
    }

protected:
    void setLeds(int leds, int rate)
    {
        ui->Leds->setValue(leds);
        ui->FPS_V->setValue(rate);
    }

    void addColour(int startMs, int lengthMs, const QColor &colour = Qt::red)
    {
        add(patternBlob("1?" + colour.name(), startMs, lengthMs, colour));
    }

    // One colour after the other, each of a second: 80 LEDs at 100 columns a second are 6 KB a second.
    void addSeconds(int seconds)
    {
        setLeds(80, 100);
        for (int i = 0; i < seconds; ++i) {
            addColour(i * 1000, 1000, QColor(255, i, 0));
        }
    }

    // What goes over the wire: all but the header's last two bytes.
    static QByteArray wholeUpload() { return contentOf("extemp2.tmp").chopped(2) + contentOf("extemp.tmp"); }
};
