// Where the tests of the device link work: a working directory of its own, with ports that exist only where a simulated
// prop makes one, and in it the real window.
#pragma once

#include "app/mainwindow.h"
#include "prop/simulatedprop.h"
#include "show/model/propvalues.h"
#include "show/model/timescale.h"
#include "show/wire/portscan.h"
#include "support/testenv.h"
#include "timeline/timeline.h"
#include "timeline/timelineitem.h"
#include "ui_mainwindow.h"

#include <QFile>
#include <QLoggingCategory>
#include <QtTest>

class PortFolder
{
public:
    PortFolder()
    {
        QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
        deviceWaitMs = 5000;
        qputenv("GLOWSMITH_PORT_PATTERN", QFile::encodeName(env.path(QStringLiteral("COM%1"))));
    }

    QString port(int number) const { return env.path(QStringLiteral("COM%1").arg(number)); }

    TestEnv env;
};

// The window is not shown: its preview would keep the machine busy while times are measured.
class DeviceWindow : public PortFolder
{
public:
    explicit DeviceWindow(int leds = 2, int rate = 10)
    {
        msPerPixel = 10.0F;
        window.reset(new MainWindow);
        window->propWaitMs = deviceWaitMs;
        ui = window->ui;
        window->gadgetGroup->actions().at(0)->trigger(); // a custom prop
        ui->Leds->setValue(leds);
        ui->FPS_V->setValue(rate);
    }

    void add(int kind, int start, int end, const QColor &colour)
    {
        glow::PatternRecord record;
        record.thumbnail = QPixmap(85, 85);
        record.thumbnail.fill(colour);
        record.startTime = glow::timeOf(start);
        record.endTime = glow::timeOf(end);
        record.repeatCount = 1;
        record.patternKind = kind;
        record.settingsText = QStringLiteral("0?1?a.png?0|0|0");
        if (kind == glow::ColourPattern) {
            record.solidColor = colour;
            record.settingsText = QStringLiteral("1?") + colour.name();
        }
        window->currentTimeline->addTimelineItem(new TimelineItem(glow::writePattern(record), window->currentTimeline));
    }

    QScopedPointer<MainWindow> window;
    Ui::MainWindow *ui = nullptr;
};

inline QByteArray fileBytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

inline PropBehaviour silentProp()
{
    PropBehaviour behaviour;
    behaviour.greeting.clear();
    return behaviour;
}

// The host has closed the port of the last session.
inline bool portClosed(const QVector<PropSession> &sessions)
{
    return !sessions.isEmpty() && !sessions.last().open;
}
