// The upload: sends the two parts of a device image (image/deviceimage.h) to a prop, in blocking calls on any thread.
//
//   prop   a greeting, any text, once DTR is up           5 s, else the next port
//   host   the track byte
//   prop   a reply; text that contains ERR refuses        5 s
//   host   the header from offset 1, without its last two bytes (the cut is part of the protocol)
//   host   the frame data in pieces of 2048 bytes, 10 ms apart
//   prop   a closing reply, any bytes                     no limit
//
// There are no lengths, checksums or retries: the prop finds the end by the data's own markers.
#pragma once

#include "show/wire/portscan.h"

#include <functional>

class QFileDevice;
class QSerialPort;

namespace glow {

enum class UploadEnd {
    Sent,            // the whole exchange has ended normally
    FilesUnreadable, // a part of the image cannot be opened, or the header is empty
    NoReply,         // to the track byte
    Refused,
    Broken // the port gave up before the closing reply
};

// What happens beside the exchange. Everything is called on the thread that uploads.
struct UploadHooks
{
    std::function<void()> checkpoint = [] {}; // behind every wait and pause; a thread that was killed does not return
    std::function<void(int percent)> progress = [](int) {}; // 0 to 99 before each piece
    int waitMs = propWaitMs;
};

// Waits for data like waitForData, with a checkpoint at least every 20 ms.
bool waitForData(QSerialPort &port, int ms, const UploadHooks &hooks);

// Looks for a prop that says anything at all. number as in scanPorts.
ScanResult findProp(QSerialPort &port, int &number, const UploadHooks &hooks);

// The exchange behind the greeting. The port is left open, however it went. The files are opened here and closed once
// they are sent.
UploadEnd sendImage(QSerialPort &port, QFileDevice &header, QFileDevice &frameData, const UploadHooks &hooks);

} // namespace glow
