#include "targets.h"

#include "app/mainwindow.h"
#include "device/setup.h"
#include "show/base/updatereply.h"
#include "show/image/devicedecode.h"
#include "show/image/deviceimage.h"
#include "show/image/projectshow.h"
#include "show/image/showcheck.h"
#include "show/image/showpicture.h"
#include "show/model/missingpictures.h"
#include "show/model/oldproject.h"
#include "show/model/projectfile.h"
#include "show/model/repeatrules.h"
#include "show/model/settingstext.h"
#include "show/wire/portscan.h"
#include "support/samples.h"
#include "support/windowcheck.h"
#include "timeline/timeline.h"
#include "timeline/timelineitem.h"
#include "ui_mainwindow.h"
#include "ui_setup.h"

#include <QApplication>
#include <QBuffer>
#include <QDialog>
#include <QTemporaryDir>
#include <QTextDocument>
#include <QTimer>

#include <cstdlib>

namespace fuzz {

namespace {

void promise(bool held, const char *what)
{
    if (!held) {
        qCritical("broken: %s", what);
        std::abort();
    }
}

// The image of the show, not larger than a test can bear, and read back.
void exportImage(glow::DeviceShow show)
{
    show.patterns = show.patterns.mid(0, 3);
    show.maxFrameBytes = 1 << 18;
    QBuffer data;
    QBuffer header;
    data.open(QIODevice::WriteOnly);
    header.open(QIODevice::WriteOnly);
    glow::writeDeviceImage(show, data, header);
    const glow::DecodedShow back = glow::decodeImage(header.data(), data.data());
    promise(back.problems.isEmpty() || show.ledCount < 1, "an exported image is sound");
}

void runProject(const QByteArray &bytes)
{
    const glow::Project project = glow::readProject(bytes);
    const glow::Project again = glow::readProject(glow::writeProject(project));
    promise(again.tracks == project.tracks && again.ledCount == project.ledCount && again.songPath == project.songPath,
            "a project read, written and read is the same");
    const glow::DeviceShow show = glow::showOfTrack(project, 0, glow::ShowOptions());
    for (const glow::Finding &finding : glow::checkShow(show, glow::planImage(show))) {
        promise(finding.amount > 0 || finding.kind == glow::Finding::ShortColour ||
                    finding.kind == glow::Finding::NoColumns,
                "what is found has a size");
    }
    exportImage(show);
}

void runOldProject(const QByteArray &bytes)
{
    const glow::OldProject project = glow::readOldProject(bytes);
    for (const glow::OldPattern &pattern : project.patterns) {
        promise(pattern.start.isValid() && pattern.end.isValid(), "an old pattern has times");
        const QString text = glow::composeSettings(pattern.settings, pattern.repeats.value_or(1));
        promise(glow::parseSettings(text).complete, "an old pattern's settings can be written");
    }
}

void runBlob(const QByteArray &bytes)
{
    glow::PatternRecord record = glow::readPattern(bytes);
    const QByteArray written = glow::writePattern(record);
    promise(glow::writePattern(glow::readPattern(written)) == written, "a blob read, written and read is the same");
    QByteArray over = bytes;
    glow::overwritePattern(over, record);
    promise(over.startsWith(written), "a blob written over itself is the same");

    const QString text = record.settingsText;
    glow::isPictureLost(text);
    glow::lostPictureName(text);
    glow::withPicturePath(text, QStringLiteral("a.png"));
    promise(glow::withoutSeparators(text).count(u'?') == 0, "no separator is left");

    glow::DeviceShow show{36, 600.0F, 36, 600, 1, true, 0, {}};
    show.patterns = {glow::showPattern(record)};
    exportImage(show);
    glow::retime(record, record.endTime, record.startTime, 80, 1600.0F);
}

void runBin(const QByteArray &bytes)
{
    const glow::DecodedShow show = glow::decodeBin(bytes);
    promise(!glow::drawShow(show).isNull(), "every show has a picture");
    glow::ImageReader whole(glow::ImageReader::Form::Wire);
    glow::ImageReader pieces(glow::ImageReader::Form::Wire);
    whole.feed(bytes.mid(10));
    for (int at = 10; at < bytes.size(); at += 7) {
        pieces.feed(bytes.mid(at, 7));
    }
    promise(whole.result().problems == pieces.result().problems, "pieces read like the whole");
}

// The first byte of the reply is where it is cut in two.
void runDevice(const QByteArray &bytes)
{
    static auto *terminal = new setup(nullptr);
    const int cut = bytes.isEmpty() ? 0 : static_cast<uchar>(bytes.at(0));
    promise(!glow::deviceText(bytes).contains(QChar::Null), "no zero byte gets through");
    terminal->take(bytes.mid(1, cut));
    terminal->take(bytes.mid(1 + cut));
    QCoreApplication::processEvents();
    promise(terminal->ui->MONITOR->document()->characterCount() <= setup::monitorLimit + 1, "the monitor has a limit");
}

// What the start dialog shows of the note, as its message box lays it out.
void runUpdate(const QByteArray &bytes)
{
    const glow::UpdateReply reply = glow::parseUpdateReply(bytes);
    promise(reply.version == 0 || !reply.versionLine.isEmpty(), "a version comes from a line");
    QTextDocument box;
    box.setHtml(QStringLiteral("<font color='white'>") + reply.note + QStringLiteral("</font>"));
    box.setTextWidth(500);
    box.size();
}

// The bytes opened in the real window as a user would; the first byte tells the form.
void runWindow(const QByteArray &bytes)
{
    static QTemporaryDir dir;
    static QTimer *answers = nullptr; // stands before the window, which may ask something as it is built
    if (answers == nullptr) {
        answers = new QTimer(QCoreApplication::instance());
        QObject::connect(answers, &QTimer::timeout, [] {
            if (auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget())) {
                dialog->reject();
            }
        });
        answers->start(0);
    }
    static auto *window = new MainWindow;
    const bool isNew = bytes.isEmpty() || bytes.at(0) % 2 == 0;
    const QString path = dir.filePath(isNew ? "a.gsw3" : "a.gsw");
    promise(put(path, bytes.mid(1)), "the file is written");
    window->LoadFile(path);
    promise(whatIsWrong(*window).isEmpty(), "the window is in order");
    const auto items = window->currentTimeline->items;
    if (!items.isEmpty()) {
        window->on_timelineItem_Clicked(items.first(), false);
        window->on_Add_Button_clicked();
        window->on_actionUndo_triggered();
    }
    const glow::Project saved = glow::readProject(glow::writeProject(window->asProject()));
    promise(saved.tracks.size() == window->timelines.size(), "what was opened can be saved");
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    promise(whatIsWrong(*window).isEmpty(), "the window is in order after an edit");
}

} // namespace

const Target targets[] = {
    {"project", runProject}, {"oldproject", runOldProject}, {"blob", runBlob},     {"bin", runBin},
    {"device", runDevice},   {"update", runUpdate},         {"window", runWindow}, {nullptr, nullptr}};

const Target *target(const QString &name)
{
    const Target *one = targets;
    while (one->name != nullptr && name != one->name) {
        ++one;
    }
    return one->name != nullptr ? one : nullptr;
}

} // namespace fuzz
