// Takes the manual's pictures from the program itself: make-manual-pictures LANGUAGE FOLDER, with a number from
// AppSettings::Language, on a display, in the project's root. "cmake --build --preset release --target manual-pictures"
// does it for both languages.
#include "app/mainwindow.h"
#include "app/startup.h"
#include "device/checkdialog.h"
#include "device/pass.h"
#include "device/setup.h"
#include "forms/style.h"
#include "library/about.h"
#include "render/filmdialog.h"
#include "render/screencapture.h"
#include "show/base/appsettings.h"
#include "show/base/languages.h"
#include "show/base/resources.h"
#include "show/model/patternrecord.h"
#include "timeline/indicator.h"
#include "timeline/timeline.h"
#include "timeline/timelineheaders.h"
#include "timeline/timelineitem.h"
#include "ui_filmdialog.h"
#include "ui_mainwindow.h"
#include "ui_setup.h"

#include <QApplication>
#include <QDataStream>
#include <QDir>
#include <QElapsedTimer>
#include <QHash>
#include <QMouseEvent>
#include <QProcess>
#include <QProgressDialog>
#include <QScreen>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cmath>

namespace {

bool waitFor(const std::function<bool()> &met, int ms = 30000)
{
    QElapsedTimer clock;
    clock.start();
    while (!met() && clock.elapsed() < ms) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    return met();
}

// Lets what is on the screen be laid out, painted and, in the preview, spin.
void settle(int ms = 700)
{
    waitFor([] { return false; }, ms);
}

// The 256 commonest colours, each the mean of those that share its upper five bits a channel.
QVector<QRgb> paletteOf(const QImage &image)
{
    struct Sum
    {
        int count = 0;
        qint64 red = 0, green = 0, blue = 0;
    };
    QHash<int, Sum> sums;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb colour = image.pixel(x, y);
            Sum &sum = sums[(qRed(colour) >> 3) << 10 | (qGreen(colour) >> 3) << 5 | qBlue(colour) >> 3];
            ++sum.count;
            sum.red += qRed(colour);
            sum.green += qGreen(colour);
            sum.blue += qBlue(colour);
        }
    }
    QList<Sum> all = sums.values();
    std::sort(all.begin(), all.end(), [](const Sum &a, const Sum &b) { return a.count > b.count; });
    QVector<QRgb> palette;
    for (int i = 0; i < std::min(256, all.size()); ++i) {
        const Sum &sum = all.at(i);
        palette.append(qRgb(static_cast<int>(sum.red / sum.count), static_cast<int>(sum.green / sum.count),
                            static_cast<int>(sum.blue / sum.count)));
    }
    return palette;
}

class Camera
{
public:
    explicit Camera(const QString &folder)
        : folder(folder)
    {
    }

    void take(const QString &name, const QPixmap &picture)
    {
        const QImage image = picture.toImage().convertToFormat(QImage::Format_RGB32);
        const QString path = folder.filePath(name + QStringLiteral(".png"));
        const QImage small = image.convertToFormat(QImage::Format_Indexed8, paletteOf(image), Qt::ThresholdDither);
        whole = small.save(path, "PNG", 1) && whole; // quality 1: packed as tightly as can be
        whole = !image.isNull() && whole;
    }

    void take(const QString &name, QWidget *widget)
    {
        settle();
        take(name, widget->grab());
    }

    // The part of the window that all of these take up.
    void takeAround(const QString &name, QWidget *window, const QList<QWidget *> &parts)
    {
        settle();
        QRect area;
        for (const QWidget *part : parts) {
            area |= QRect(part->mapTo(window, QPoint(0, 0)), part->size());
        }
        take(name, window->grab(area));
    }

    // The dialog that open leads to, now or soon; it is dismissed.
    void takeDialog(const QString &name, const std::function<void()> &open)
    {
        bool taken = false;
        QTimer look;
        QObject::connect(&look, &QTimer::timeout, [&] {
            auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
            if (dialog != nullptr && dialog->isVisible() && !taken) {
                taken = true;
                take(name, dialog);
                dialog->reject();
            }
        });
        look.start(100);
        open();
        whole = waitFor([&] { return taken; }) && whole;
    }

    void takeMenu(const QString &name, QMenu *menu)
    {
        menu->popup(QPoint(100, 100));
        take(name, menu);
        menu->hide();
        settle(); // off the screen, which may be the next subject
    }

    bool whole = true; // every picture could be taken

private:
    QDir folder;
};

void add(MainWindow &window, int startMs, int endMs)
{
    window.ui->NEW_radio->setChecked(true);
    window.ui->Mode_t1->setTime(glow::timeOf(startMs));
    window.ui->Mode_t2->setTime(glow::timeOf(endMs));
    window.on_Add_Button_clicked();
}

void moveHead(MainWindow &window, int ms)
{
    window.ui->timeline_headers->indicator->setIndicatorTime(glow::timeOf(ms), true);
}

// A song of drum beats, mono at 8 kHz.
void writeSong(const QString &path)
{
    constexpr int rate = 8000;
    constexpr int seconds = 24;
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        return;
    }
    QDataStream out(&file);
    out.setByteOrder(QDataStream::LittleEndian);
    constexpr quint32 bytes = rate * seconds * 2;
    out.writeRawData("RIFF", 4);
    out << quint32(36 + bytes);
    out.writeRawData("WAVEfmt ", 8);
    out << quint32(16) << quint16(1) << quint16(1) << quint32(rate) << quint32(rate * 2) << quint16(2) << quint16(16);
    out.writeRawData("data", 4);
    out << bytes;
    for (int i = 0; i < rate * seconds; ++i) {
        const double inBeat = std::fmod(i / double(rate), 0.5);
        const double strength = i / (rate / 2) % 4 == 0 ? 1 : 0.5;
        out << qint16(28000 * strength * std::exp(-7 * inBeat) * std::sin(700 * inBeat));
    }
}

void takePanel(Camera &camera, MainWindow &window)
{
    Ui::MainWindow &ui = *window.ui;
    ui.NEW_radio->setChecked(true);
    ui.Mode_Pic->setCurrentIndex(glow::PicturePattern);
    window.picload(QStringLiteral("examples/pictures/hearts.png"));
    camera.take(QStringLiteral("picture"), ui.Mode_Pic);
    camera.takeAround(QStringLiteral("preview"), &window, {ui.GLWidget, ui.frame_6});
    camera.takeAround(QStringLiteral("times"), &window, {ui.frame_5, ui.frame});
    ui.Mode_Pic->setCurrentIndex(glow::ColourPattern);
    ui.Color_R->setValue(0);
    ui.Color_G->setValue(90);
    camera.take(QStringLiteral("colour"), ui.Mode_Pic);
    ui.Mode_Pic->setCurrentIndex(glow::TextPattern);
    ui.text_Edit->setText(QStringLiteral("GLOW"));
    camera.take(QStringLiteral("text"), ui.Mode_Pic);
    ui.Mode_Pic->setCurrentIndex(glow::EffectPattern);
    ui.Spe_comboBox->setCurrentIndex(7);
    camera.take(QStringLiteral("effect"), ui.Mode_Pic);
}

void takeTracks(Camera &camera, MainWindow &window, const QString &song)
{
    Ui::MainWindow &ui = *window.ui;
    window.on_timeline_add_clicked();
    ui.Mode_Pic->setCurrentIndex(glow::EffectPattern);
    for (int i = 0; i < 3; ++i) {
        ui.Spe_comboBox->setCurrentIndex(4 + 2 * i);
        add(window, 3000 * i, 3000 * i + 2500);
    }
    moveHead(window, 4200);
    window.on_timelineItem_Clicked(window.currentTimeline->items.at(1), false);
    camera.take(QStringLiteral("tracks"), ui.timeline_parent_frame);
    window.ReadSong(song);
    camera.whole = waitFor([&] { return window.hasSong() && !window.decodeProgress->isVisible(); }) && camera.whole;
    camera.takeAround(QStringLiteral("song"), &window, {ui.frame_2, ui.timeline_parent_frame});
}

void takeCapture(Camera &camera, MainWindow &window)
{
    ScreenCapture capture(&window);
    capture.show();
    settle();
    // Pressed and not let go, since that asks for a file.
    const auto send = [&capture](QEvent::Type type, const QPoint &place, Qt::MouseButtons held) {
        QMouseEvent event(type, place, type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, held, Qt::NoModifier);
        QCoreApplication::sendEvent(&capture, &event);
    };
    send(QEvent::MouseButtonPress, {560, 50}, Qt::LeftButton);
    send(QEvent::MouseMove, {850, 345}, Qt::LeftButton);
    settle();
    camera.take(
        QStringLiteral("capture"),
        QGuiApplication::primaryScreen()->grabWindow(0, 0, 0, 1100, 640).scaledToWidth(700, Qt::SmoothTransformation));
}

// Of a pause, a colour and a pattern that are too short.
void takeCheck(Camera &camera, MainWindow &window)
{
    add(window, 8510, 10000);
    window.ui->Mode_Pic->setCurrentIndex(glow::ColourPattern);
    add(window, 10000, 10003);
    add(window, 10003, 12000);
    window.checkShow();
    auto *check = window.findChild<CheckDialog *>();
    camera.take(QStringLiteral("check"), check);
    check->close();
}

// What a user has whose picture was moved.
void takeLostPicture(Camera &camera, MainWindow &window, const QString &folder)
{
    const QString path = folder + QStringLiteral("/waves.png");
    QFile::copy(QStringLiteral("examples/pictures/waves.png"), path);
    window.ui->Mode_Pic->setCurrentIndex(glow::PicturePattern);
    window.picload(path);
    add(window, 13000, 15000);
    QFile::remove(path);
    camera.takeDialog(QStringLiteral("lost"), [&window] { window.scanMissingPictures(); });
}

void takeDevice(Camera &camera, MainWindow &window, const QString &folder)
{
    camera.takeAround(QStringLiteral("upload"), &window, {window.ui->frame_3});
    camera.takeDialog(QStringLiteral("noprop"), [&window] { window.on_UPload_Button_clicked(); });
    camera.takeDialog(QStringLiteral("password"), [] { Pass().exec(); });

    QProcess prop;
    prop.start(QCoreApplication::applicationDirPath() + QStringLiteral("/glowsmith-prop"),
               {QStringLiteral("--out"), folder + QStringLiteral("/received"), QStringLiteral("--link"),
                folder + QStringLiteral("/ports")});
    waitFor([&] { return !QDir(folder + QStringLiteral("/ports")).entryList(QDir::System | QDir::Files).isEmpty(); });
    setup terminal(nullptr);
    terminal.show();
    terminal.ui->COMMAND->setText(QStringLiteral("AT"));
    terminal.ui->SEND_BUTTON->click();
    camera.take(QStringLiteral("terminal"), &terminal);
    prop.kill();
    prop.waitForFinished();
}

void takeAll(Camera &camera, const QString &folder)
{
    {
        about start;
        start.show();
        camera.take(QStringLiteral("start"), &start);
    }
    MainWindow window;
    window.resize(1300, 885);
    window.show();
    window.LoadFile(QStringLiteral("examples/sample.gsw3"));
    settle();
    moveHead(window, 7000);
    camera.take(QStringLiteral("window"), &window);
    camera.takeMenu(QStringLiteral("menu-file"), window.ui->menu);
    camera.takeMenu(QStringLiteral("menu-edit"), window.ui->menu_4);
    camera.takeMenu(QStringLiteral("menu-other"), window.ui->menu_2);
    takeCapture(camera, window);
    takePanel(camera, window);
    writeSong(folder + QStringLiteral("/song.wav"));
    takeTracks(camera, window, folder + QStringLiteral("/song.wav"));
    window.on_actionFilm_triggered();
    auto *film = window.findChild<FilmDialog *>();
    film->ui->moment->setValue(1500);
    camera.take(QStringLiteral("film"), film);
    film->close();
    takeCheck(camera, window);
    takeDevice(camera, window, folder);
    takeLostPicture(camera, window, folder);

    const QString show = folder + QStringLiteral("/show.png");
    QProcess::execute(QCoreApplication::applicationDirPath() + QStringLiteral("/glowsmith-cli"),
                      {QStringLiteral("show"), QStringLiteral("examples/sample.gsw3"), QStringLiteral("-o"), show});
    camera.take(QStringLiteral("commandline"), QPixmap(show).copy(0, 0, 1600, 240));
    camera.takeDialog(QStringLiteral("recovery"), [] { glow::wantsUnsavedBack(); });
}

} // namespace

int main(int argc, char *argv[])
{
    const QTemporaryDir folder;
    qputenv("HOME", folder.path().toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", folder.path().toLocal8Bit());
    qputenv("XDG_DATA_HOME", folder.path().toLocal8Bit());
    qputenv("GLOWSMITH_PORT_PATTERN", (folder.path() + QStringLiteral("/ports/COM%1")).toLocal8Bit());
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argc, argv);
    const int language = QCoreApplication::arguments().value(1).toInt();
    const QString goal = QCoreApplication::arguments().value(2);
    if (language < AppSettings::Chinese || language > AppSettings::CompleteEnglish || goal.isEmpty()) {
        qWarning("Usage: make-manual-pictures LANGUAGE FOLDER");
        return 2;
    }
    // The window opens what its program is told to, and these words are none of its.
    argc = 1;
    QTcpServer silent; // an update server that never answers
    silent.listen(QHostAddress::LocalHost);
    qputenv("GLOWSMITH_UPDATE_URL", "http://127.0.0.1:" + QByteArray::number(silent.serverPort()) + "/version");

    glow::initResources();
    glow::prepareApplication();
    {
        AppSettings settings;
        settings.setValue(AppSettings::languageKey, language);
        settings.setValue(AppSettings::gadgetKey, 4);
        settings.setValue(AppSettings::projectKey, QStringLiteral("Documents/first-show.gsw3"));
    }
    glow::Languages languages;
    languages.speak(language);
    Camera camera(goal);
    QDir().mkpath(goal);
    takeAll(camera, folder.path());
    return camera.whole ? 0 : 1;
}
