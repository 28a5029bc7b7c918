#include "prop/simulatedprop.h"

#include <QFile>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

namespace {

constexpr int tickMs = 2;          // how often an idle port is looked at
constexpr double endOfDataMs = 80; // silence behind a complete show that could still go on with its loop tail
constexpr double lostMs = 1000;    // silence after which a show that cannot be read is given up
constexpr double endOfTextMs = 40; // silence behind a command, which has no line ending

qint64 clockNs()
{
    return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

// What the terminal's commands answer.
QByteArray answerTo(const QByteArray &command)
{
    if (command == "AS") {
        return "LED type changed\r\n";
    }
    if (command == "AT") {
        return "Simulated prop\r\n";
    }
    if (command == "A0") {
        return "Full speed test\r\n";
    }
    if (command.size() == 3 && command.startsWith("AP") && command.at(2) >= '1' && command.at(2) <= '8') {
        return "Playing track " + command.mid(2) + "\r\n";
    }
    return "?\r\n";
}

// Bytes pass as they are, in both directions and without an echo, from before the host has set up the port.
bool makeRaw(const char *slavePath)
{
    const int slave = ::open(slavePath, O_RDWR | O_NOCTTY);
    if (slave < 0) {
        return false;
    }
    termios settings = {};
    const bool ok = ::tcgetattr(slave, &settings) == 0 && (::cfmakeraw(&settings), true) &&
                    ::tcsetattr(slave, TCSANOW, &settings) == 0;
    ::close(slave); // from here on the other end counts as not opened
    return ok;
}

} // namespace

QByteArray PropSession::sent() const
{
    QByteArray bytes;
    for (const PropEvent &event : events) {
        if (event.kind == PropEvent::Sent) {
            bytes += event.bytes;
        }
    }
    return bytes;
}

SimulatedProp::SimulatedProp(PropBehaviour behaviour)
    : behaviour(std::move(behaviour))
{
}

SimulatedProp::~SimulatedProp()
{
    {
        const std::lock_guard<std::mutex> lock(mutex);
        stopping = true;
    }
    if (thread.joinable()) {
        thread.join();
    }
    vanish();
}

bool SimulatedProp::start(const QString &link)
{
    const auto refuse = [this](const QString &what) {
        problem = what + QStringLiteral(": ") + QString::fromLocal8Bit(std::strerror(errno));
        vanish();
        return false;
    };
    master = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    std::array<char, 128> name = {};
    if (master < 0 || ::grantpt(master) != 0 || ::unlockpt(master) != 0 ||
        ::ptsname_r(master, name.data(), name.size()) != 0 || !makeRaw(name.data()) ||
        ::fcntl(master, F_SETFL, O_NONBLOCK) != 0) {
        return refuse(QStringLiteral("no pseudo-terminal"));
    }
    path = QFile::decodeName(name.data());
    if (!link.isEmpty()) {
        if (!QFile::link(path, link)) {
            return refuse(link);
        }
        linkPath = link;
    }
    thread = std::thread([this] { run(); });
    return true;
}

QVector<PropSession> SimulatedProp::sessions() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return list;
}

PropSession SimulatedProp::session(int index) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return list.value(index);
}

bool SimulatedProp::waitFor(const std::function<bool(const QVector<PropSession> &)> &condition, int ms)
{
    std::unique_lock<std::mutex> lock(mutex);
    return changed.wait_for(lock, std::chrono::milliseconds(ms), [&] { return condition(list); });
}

double SimulatedProp::now() const
{
    return static_cast<double>(clockNs() - openedNs) / 1e6;
}

void SimulatedProp::run()
{
    bool isOpen = false;
    std::array<char, 8192> buffer = {};
    while (master >= 0) {
        {
            const std::lock_guard<std::mutex> lock(mutex);
            if (stopping) {
                return;
            }
        }
        const bool due = isOpen && !pending.isEmpty() && pending.first().atMs <= now();
        pollfd state = {master, static_cast<short>(due ? POLLIN | POLLOUT : POLLIN), 0};
        ::poll(&state, 1, tickMs);
        const bool hungUp = (state.revents & POLLHUP) != 0; // nobody has the other end open
        if (!hungUp && !isOpen) {
            isOpen = true;
            opened();
        }
        if ((state.revents & POLLIN) != 0) {
            const ssize_t count = ::read(master, buffer.data(), buffer.size());
            if (count > 0 && isOpen) {
                receive(QByteArray(buffer.data(), static_cast<int>(count)));
                continue; // as long as there is something to read
            }
        }
        if (hungUp) {
            if (isOpen) {
                isOpen = false;
                closed();
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(tickMs)); // poll does not wait on a hung-up port
        } else {
            sayPending();
            idle();
        }
    }
}

void SimulatedProp::opened()
{
    openedNs = clockNs();
    lastByteMs = 0;
    text.clear();
    reader = glow::ImageReader(glow::ImageReader::Form::Wire);
    answered = false;
    pending.clear();
    if (!behaviour.greeting.isEmpty()) {
        say(behaviour.greetingMs, behaviour.greeting);
    }
    for (const PropRemark &remark : behaviour.chatter) {
        say(remark.afterMs, remark.text);
    }
    const std::lock_guard<std::mutex> lock(mutex);
    list.append(PropSession());
    changed.notify_all();
}

void SimulatedProp::closed()
{
    ::tcflush(master, TCIOFLUSH); // nobody is left to hear it
    const std::lock_guard<std::mutex> lock(mutex);
    PropSession &session = list.last();
    session.open = false;
    if (session.kind == PropSession::Upload && !answered) {
        takeResult();
    }
    changed.notify_all();
}

void SimulatedProp::receive(const QByteArray &bytes)
{
    lastByteMs = now();
    PropSession::Kind kind = PropSession::Quiet;
    qint64 total = 0;
    QByteArray rest = bytes;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        PropSession &session = list.last();
        session.events.append({PropEvent::Received, lastByteMs, bytes});
        session.received += bytes;
        if (session.kind == PropSession::Quiet) {
            const int first = static_cast<uchar>(bytes.at(0));
            if (first >= 1 && first <= 8) {
                session.kind = PropSession::Upload;
                session.track = first;
                rest = bytes.mid(1);
                session.refused = behaviour.reply.contains("ERR");
                if (!behaviour.reply.isEmpty()) {
                    say(lastByteMs + behaviour.replyMs, behaviour.reply);
                }
            } else {
                session.kind = PropSession::Commands;
            }
        }
        kind = session.kind;
        total = session.received.size();
        changed.notify_all();
    }
    if (behaviour.vanishAfter >= 0 && total >= behaviour.vanishAfter) {
        closed();
        vanish();
        gone = true;
        return;
    }
    if (kind == PropSession::Upload) {
        reader.feed(rest);
    } else {
        takeText(rest);
    }
    sayPending();
}

void SimulatedProp::takeText(const QByteArray &bytes)
{
    text += bytes;
    if (text == "DD") {
        text.clear();
        {
            const std::lock_guard<std::mutex> lock(mutex);
            list.last().kind = PropSession::Wipe;
        }
        if (!behaviour.wiped.isEmpty()) {
            say(now() + behaviour.wipeMs, behaviour.wiped, true);
        }
    }
}

// What silence means: the end of a show without a loop tail, the end of a command.
void SimulatedProp::idle()
{
    const double silence = now() - lastByteMs;
    if (!text.isEmpty() && silence > endOfTextMs) {
        say(now(), answerTo(text));
        text.clear();
    }
    if (!answered && ((reader.complete() && silence > endOfDataMs) || (reader.failed() && silence > lostMs))) {
        finishUpload();
    }
}

void SimulatedProp::finishUpload()
{
    answered = true;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        takeResult();
    }
    if (!behaviour.closing.isEmpty()) {
        say(now() + behaviour.closingMs, behaviour.closing, true);
    }
}

// With the mutex held.
void SimulatedProp::takeResult()
{
    PropSession &session = list.last();
    session.headerBytes = reader.headerBytes() + 1;
    session.show = reader.result();
    session.show.slot = session.track;
    if (session.show.extraBytes > 0) {
        session.show.problems << QStringLiteral("%1 bytes behind the end of the show").arg(session.show.extraBytes);
    }
}

void SimulatedProp::say(double afterMs, const QByteArray &what, bool completes)
{
    pending.append({afterMs, what, completes, 0});
    std::stable_sort(pending.begin(), pending.end(),
                     [](const Pending &a, const Pending &b) { return a.atMs < b.atMs; });
}

void SimulatedProp::sayPending()
{
    while (!pending.isEmpty() && pending.first().atMs <= now()) {
        Pending &next = pending.first();
        const QByteArray rest = next.text.mid(next.said, 4096);
        const ssize_t count = ::write(master, rest.constData(), static_cast<size_t>(rest.size()));
        if (count < 0) {
            return; // the host does not read: later
        }
        const std::lock_guard<std::mutex> lock(mutex);
        PropSession &session = list.last();
        session.events.append({PropEvent::Sent, now(), rest.left(static_cast<int>(count))});
        next.said += static_cast<int>(count);
        if (next.said == next.text.size()) {
            session.complete = session.complete || next.completes;
            pending.removeFirst();
        }
        changed.notify_all();
    }
}

void SimulatedProp::vanish()
{
    if (!linkPath.isEmpty()) {
        QFile::remove(linkPath);
        linkPath.clear();
    }
    if (master >= 0) {
        ::close(master);
        master = -1;
    }
}
