// A prop without a prop: a pseudo-terminal with somebody at its other end who behaves as the real thing does. Tests
// talk to it, and the program glowsmith-prop puts it on the desk of people who have no prop at hand.
//
// It greets when its port is opened. What the host says first decides what follows: a track number of 1 to 8 is an
// upload, "DD" a wipe, anything else a terminal command. The end of an upload it finds as a prop does, by the data's
// own markers. Every departure can be asked for: silence, lateness, refusal, vanishing.
//
// It runs on a thread of its own, so a caller that blocks on the port can be served by its own process.
#pragma once

#include "show/image/devicedecode.h"

#include <QByteArray>
#include <QString>
#include <QVector>

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

struct PropRemark
{
    int afterMs = 0; // counted from the opening of the port
    QByteArray text;
};

struct PropBehaviour
{
    QByteArray greeting = "Wait\r\n"; // empty: stays silent
    int greetingMs = 20;
    QByteArray reply = "OK\r\n"; // to the track byte; empty: none; with ERR inside it refuses
    int replyMs = 0;
    QByteArray closing = "END\r\n"; // when the show is complete; empty: none
    int closingMs = 0;
    QByteArray wiped = "Wait\r\n"; // after "DD"; empty: none
    int wipeMs = 300;
    QVector<PropRemark> chatter; // said besides, whatever else is going on
    qint64 vanishAfter = -1;     // bytes received in one session after which the port is gone; -1: never
};

struct PropEvent
{
    enum Kind { Received, Sent };
    Kind kind = Received;
    double ms = 0;    // since the port was opened
    QByteArray bytes; // as they were read or written at once
};

// From the opening of the port to its closing.
struct PropSession
{
    enum Kind { Quiet, Upload, Wipe, Commands };
    Kind kind = Quiet;
    bool open = true;    // the host has not closed the port yet
    int track = 0;       // of an upload
    QByteArray received; // all bytes of the host
    QVector<PropEvent> events;
    bool refused = false;   // an upload was answered with ERR
    bool complete = false;  // the upload, or the wipe, has come to its end
    qint64 headerBytes = 0; // of an upload: what stands in received before the frame data, track byte included
    glow::DecodedShow show; // of an upload, its problems included

    QByteArray sent() const; // all bytes of the prop
};

class SimulatedProp
{
public:
    explicit SimulatedProp(PropBehaviour behaviour = {});
    ~SimulatedProp(); // takes the port away
    SimulatedProp(const SimulatedProp &) = delete;
    SimulatedProp &operator=(const SimulatedProp &) = delete;

    // Makes the port, and with a path a link to it there, which must not exist yet. False with an explanation if the
    // system refuses.
    bool start(const QString &link = QString());
    QString error() const { return problem; }
    QString port() const { return path; } // of the pseudo-terminal
    bool hasVanished() const { return gone; }

    // All sessions so far, the running one last.
    QVector<PropSession> sessions() const;
    PropSession session(int index) const; // an open and empty one if there is none yet

    // Waits until the sessions satisfy a condition; false when the time is over first.
    bool waitFor(const std::function<bool(const QVector<PropSession> &)> &condition, int ms = 10000);

private:
    struct Pending
    {
        double atMs;
        QByteArray text;
        bool completes; // the session is complete once this is said
        int said = 0;   // bytes of it that the host has got already
    };

    void run();
    void opened();
    void closed();
    void receive(const QByteArray &bytes);
    void takeText(const QByteArray &bytes);
    void idle();
    void takeResult();
    void finishUpload();
    void say(double afterMs, const QByteArray &text, bool completes = false);
    void sayPending();
    void vanish();
    double now() const;

    const PropBehaviour behaviour;
    QString path;
    QString linkPath;
    QString problem;
    int master = -1;
    std::atomic<bool> gone{false};
    std::thread thread;

    // Of the running session; touched by the thread only.
    qint64 openedNs = 0;
    double lastByteMs = 0;
    QByteArray text; // of a wipe or a command, as far as it has come
    glow::ImageReader reader{glow::ImageReader::Form::Wire};
    bool answered = false; // the closing reply is on its way
    QVector<Pending> pending;

    mutable std::mutex mutex; // guards what follows
    std::condition_variable changed;
    QVector<PropSession> list;
    bool stopping = false;
};
