// The window's construction and its window-level events.
#include "app/mainwindow.h"

#include "app/windowtitle.h"
#include "device/workerthread.h"
#include "forms/connectbyname.h"
#include "forms/hints.h"
#include "forms/statusnotes.h"
#include "forms/style.h"
#include "forms/timeleftlabel.h"
#include "library/help.h"
#include "show/base/appsettings.h"
#include "show/base/resources.h"
#include "show/draw/randomdraw.h"
#include "show/model/propvalues.h"
#include "show/model/timescale.h"
#include "song/chartview.h"
#include "song/mytime.h"
#include "timeline/mylabel.h"
#include "timeline/timeline.h"
#include "timeline/timelineitem.h"
#include "ui_mainwindow.h"

#include <QActionGroup>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QDebug>
#include <QDir>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMessageBox>
#include <QScreen>
#include <QScrollBar>

#include <algorithm>

namespace {

// The smallest screen on which the whole window stands.
constexpr int leastScreenWidth = 1280;
constexpr int leastScreenHeight = 720;

void fill(QActionGroup &group, const QList<QAction *> &actions)
{
    for (QAction *action : actions) {
        group.addAction(action);
    }
    group.setExclusive(true);
}

// What a form's set-up asks of the resources must be there before the form.
Ui::MainWindow *newForm()
{
    glow::initResources();
    return new Ui::MainWindow;
}

} // namespace

MainWindow::MainWindow(QWidget *parent)
    : QMainWindow(parent)
    , ui(newForm())
{
    setUpForm();
    connectForm();
    glow::seedRandomDraws(QTime::currentTime().msecsSinceStartOfDay());
    player = new QMediaPlayer(this, QMediaPlayer::StreamPlayback);
    player->setNotifyInterval(static_cast<int>(tickMs));
    setUpGroups();
    setUpHistory();
    on_timeline_add_clicked(); // a track stands from here on: whatever follows may move the play-head over it
    setUpTimeline();
    connect(ui->Add_Button, &MyButton::hovered, this, &MainWindow::on_Addbutton_hovered);
    setUpSong();
    fill(*chipGroup, {ui->actionCX2802, ui->actionAPA102C});
    setAcceptDrops(true);

    renderText();
    loadPresets(); // opens a project of the command line, so all of the above must stand
    modified = false;
    ui->action_admin->setEnabled(true);
    warnOfSmallScreen();

    // None of this can be undone.
    history.clear();
    updateStatus();
    // A project of the command line may have something to say that must not go under.
    const QString said = ui->statusBar->currentMessage();
    glow::note(ui->statusBar, QStringLiteral("WELCOME!!"));
    if (!said.isEmpty()) {
        ui->statusBar->showMessage(said);
    }
}

void MainWindow::setUpForm()
{
    ui->setupUi(this);
    const QString family = glow::familyForTexts();
    if (!family.isEmpty()) {
        ui->fontComboBox->setCurrentFont(QFont(family));
    }
    // From here on a control that changes does its work, so only now.
    glow::connectByName(this);
    glow::applyStyle(this);
    glow::addHints(this);
    addQuit();
    addCheck();
    warnOfWipe();
    timeLeft = new TimeLeftLabel(ui->statusBar);
    allowExport(false);
    glow::addHelp(ui->menu_2, ui->statusBar);
    // A fresh window starts at its left.
    ui->Mode_Pic->setFocus();
    patternWidth = ui->Leds->value();
    ledCount = static_cast<qint16>(ui->Leds->value());
}

// What is connected by no slot's name and needs nothing but the form.
void MainWindow::connectForm()
{
    connect(ui->dockWidget_3, &QDockWidget::topLevelChanged, this, [this](bool floats) {
        if (floats) {
            ui->dockWidget_3->setGeometry(ui->dockWidget_3->x(), ui->dockWidget_3->y(), 50, 50);
        }
    });
    connect(ui->timeline_scroll, &ScrollArea::scrolled_with_ctl, this, &MainWindow::on_timeline_scrolled);
    connect(ui->Song_time, &myTime::timer_timeout, this, &MainWindow::timerTimeout);
}

void MainWindow::setUpGroups()
{
    languageGroup = new QActionGroup(this);
    gadgetGroup = new QActionGroup(this); // filled with the catalogue's rows by buildGadgetMenu
    chipGroup = new QActionGroup(this);
    fill(*languageGroup,
         {ui->actionChinese, ui->actionEnglish, ui->actionCompleteEnglish}); // in the order of AppSettings::Language
}

void MainWindow::setUpHistory()
{
    history.isHeld = [this](const TimelineItem *item) {
        // The Delete key takes a pattern of another track off that track, yet leaves it on its list.
        const auto holds = [item](const Timeline *track) {
            return track->dragItem == item || track->items.contains(const_cast<TimelineItem *>(item));
        };
        return item == currentItem || item == previewItem || std::any_of(timelines.cbegin(), timelines.cend(), holds);
    };
}

MainWindow::~MainWindow()
{
    // Player and decoders end with notifications of their own, which must not reach a window without its form.
    for (QMediaObject *media : findChildren<QMediaObject *>()) {
        media->disconnect(this);
    }
    // The thread must not outlive the application object. A killed one is never deleted: its port stays open.
    if (uploadThread != nullptr) {
        uploadThread->kill();
        uploadThread->wait();
    }
    delete ui;
}

void MainWindow::loadPresets()
{
    buildGadgetMenu();

    const AppSettings settings;
    picPath = settings.value(AppSettings::pictureKey, QDir::homePath() + QStringLiteral("/Pictures")).toString();
    currentFile = settings.value(AppSettings::projectKey, QDir::homePath() + QStringLiteral("/Documents")).toString();
    if (QAction *language =
            languageGroup->actions().value(settings.value(AppSettings::languageKey).toInt() - AppSettings::Chinese)) {
        language->setChecked(true);
    }
    // A number that is no row's leaves the custom entry, by which the user can still get on.
    const QList<QAction *> gadgets = gadgetGroup->actions();
    QAction *gadget = gadgets.value(settings.value(AppSettings::gadgetKey).toInt(), gadgets.first());
    emit gadget->triggered();
    gadget->toggle();
    ui->Mode_Pic->setCurrentIndex(0);
    ui->Add_Button->setEnabled(false);

    const QString argument = QCoreApplication::arguments().value(1);
    if (!argument.isEmpty()) {
        LoadFile(argument);
    }
}

void MainWindow::addQuit()
{
    addRecentProjects();
    QAction *quit = ui->menu->addAction(glow::hint(QT_TRANSLATE_NOOP("Hints", "離開")), this, &QWidget::close);
    quit->setObjectName(QStringLiteral("actionQuit"));
    quit->setShortcut(QStringLiteral("Ctrl+Q"));
}

void MainWindow::warnOfSmallScreen()
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    if (screen != nullptr &&
        (screen->size().width() < leastScreenWidth || screen->size().height() < leastScreenHeight)) {
        QMessageBox::warning(this, tr("解析度過低"), tr("最低解析度1280*720"), QMessageBox::Ok);
    }
}

void MainWindow::updateStatus()
{
    int count = 0;
    for (const Timeline *track : qAsConst(timelines)) {
        count += track->items.size();
    }
    ui->Saved_status->setText(tr("圖樣數：") + QString::number(count));
    const bool first = history.snapshots.isEmpty();
    if (!history.record(timelines)) {
        return;
    }
    modified = true;
    if (first) {
        return; // the base of the history is no change of the show
    }
    setWindowTitle(glow::changedTitle(windowTitle()));
}

void MainWindow::data_changed()
{
    qDebug() << "data changed";
}

void MainWindow::outlog() {}

void MainWindow::on_actionPreference_triggered() {}

void MainWindow::closeEvent(QCloseEvent *event)
{
    AppSettings settings;
    settings.setValue(AppSettings::sizeKey, size());
    settings.setValue(AppSettings::maximizedKey, isMaximized());
    keepLayout();
    settings.sync();

    const auto answer =
        QMessageBox::question(this, QString(), tr("<font color='white'>關閉前儲存？</font>"),
                              QMessageBox::Save | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Save);
    if (answer == QMessageBox::Save) {
        on_actionSave_triggered();
        event->accept();
        emit showIsLeft(); // the save may have failed, or found no name
    } else if (answer == QMessageBox::No) {
        event->accept();
        emit showIsGivenUp();
    } else {
        event->ignore();
    }
}

void MainWindow::keyPressEvent(QKeyEvent *event)
{
    QScrollBar *bar = ui->timeline_scroll->horizontalScrollBar();
    const int scrolled = bar->value();
    if (event->key() == Qt::Key_Delete && currentItem != nullptr) {
        qDebug() << "item delete key press";
        currentTimeline->deleteTimelineItem(currentItem);
        deselect(); // a step of the history can bring it back
        ui->NEW_radio->setChecked(true);
        updateStatus();
        tellOfDelete();
    }
    bar->setValue(scrolled);
}

// The Delete key takes no snapshot, so that a step back goes behind the change before it.
void MainWindow::tellOfDelete()
{
    glow::note(ui->statusBar,
               history.index > 0
                   ? glow::hint(QT_TRANSLATE_NOOP(
                         "Hints", "已移除。「復原」收回的是移除之前的那次變更；先「復原」再「重作」，圖樣就會回來"))
                   : glow::hint(QT_TRANSLATE_NOOP("Hints", "已移除。「復原」無法讓它回來")));
}
