// The window's construction and its window-level events.
#include "app/mainwindow.h"

#include "app/recovery.h"
#include "device/workerthread.h"
#include "forms/connectbyname.h"
#include "forms/hints.h"
#include "forms/style.h"
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
    ui->setupUi(this);
    const QString family = glow::familyForTexts();
    if (!family.isEmpty()) {
        ui->fontComboBox->setCurrentFont(QFont(family));
    }
    glow::connectByName(this);
    glow::applyStyle(this);
    glow::addHints(this);
    addQuit();
    // A fresh window starts at its left.
    ui->Mode_Pic->setFocus();
    patternWidth = ui->Leds->value();
    ledCount = static_cast<qint16>(ui->Leds->value());

    connect(ui->dockWidget_3, &QDockWidget::topLevelChanged, this, [this](bool floats) {
        if (floats) {
            ui->dockWidget_3->setGeometry(ui->dockWidget_3->x(), ui->dockWidget_3->y(), 50, 50);
        }
    });
    connect(ui->timeline_scroll, &ScrollArea::scrolled_with_ctl, this, &MainWindow::on_timeline_scrolled);
    connect(ui->Song_time, &myTime::timer_timeout, this, &MainWindow::timerTimeout);

    glow::seedRandomDraws(QTime::currentTime().msecsSinceStartOfDay());

    player = new QMediaPlayer(this, QMediaPlayer::StreamPlayback);
    player->setNotifyInterval(static_cast<int>(tickMs));
    languageGroup = new QActionGroup(this);
    gadgetGroup = new QActionGroup(this);
    chipGroup = new QActionGroup(this);
    languageGroup->addAction(ui->actionChinese);
    languageGroup->addAction(ui->actionEnglish);
    languageGroup->setExclusive(true);

    history.isHeld = [this](const TimelineItem *item) {
        // The Delete key takes a pattern of another track off that track, yet leaves it on its list.
        const auto holds = [item](const Timeline *track) {
            return track->dragItem == item || track->items.contains(const_cast<TimelineItem *>(item));
        };
        return item == currentItem || item == previewItem || std::any_of(timelines.cbegin(), timelines.cend(), holds);
    };
    on_timeline_add_clicked();

    ui->audio_frame->setAttribute(Qt::WA_TransparentForMouseEvents);
    on_timeline_max_timeChanged(ui->timeline_max->time());
    ui->Song_Slider->setMaximum(glow::msOf(ui->timeline_max->time()));

    QScrollBar *rows = ui->timeline_scroll_2->verticalScrollBar();
    connect(rows, &QScrollBar::rangeChanged, this, &MainWindow::timeline_vertical_scroll_changed);
    connect(ui->timeline_vertical_scrollbar, &QScrollBar::valueChanged, rows, &QScrollBar::setValue);
    connect(ui->timeline_vertical_scrollbar, &QScrollBar::valueChanged, ui->timeline_rowheader->verticalScrollBar(),
            &QScrollBar::setValue);

    connect(ui->Add_Button, &MyButton::hovered, this, &MainWindow::on_Addbutton_hovered);
    chartView = new ChartView(ui->audio_frame);
    chartView->setAccessibleName(glow::hint(QT_TRANSLATE_NOOP("Hints", "波形")));
    chartView->setFocusPolicy(Qt::NoFocus);
    ui->audio_frame->installEventFilter(this);
    ui->Song_play->installEventFilter(this);
    ui->Song_play_2->installEventFilter(this);
    chartView->hide();
    chipGroup->addAction(ui->actionCX2802);
    chipGroup->addAction(ui->actionAPA102C);
    chipGroup->setExclusive(true);
    setAcceptDrops(true);

    on_text_Edit_textChanged(ui->text_Edit->text());
    loadPresets();

    modified = false;
    ui->action_admin->setEnabled(true);

    const QScreen *screen = QGuiApplication::primaryScreen();
    if (screen != nullptr &&
        (screen->size().width() < leastScreenWidth || screen->size().height() < leastScreenHeight)) {
        QMessageBox::warning(this, tr("解析度過低"), tr("最低解析度1280*720"), QMessageBox::Ok);
    }

    history.clear();
    updateStatus();
    ui->statusBar->showMessage(QStringLiteral("WELCOME!!"));
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
    picPath = settings.value(QStringLiteral("main/currentpicpath"), QDir::homePath() + QStringLiteral("/Pictures"))
                  .toString();
    currentFile =
        settings.value(QStringLiteral("main/currentfile"), QDir::homePath() + QStringLiteral("/Documents")).toString();
    if (QAction *language =
            languageGroup->actions().value(settings.value(QStringLiteral("main/language")).toInt() - 1)) {
        language->setChecked(true);
    }
    // A number that is no row's leaves the custom entry, by which the user can still get on.
    const QList<QAction *> gadgets = gadgetGroup->actions();
    QAction *gadget = gadgets.value(settings.value(QStringLiteral("main/gadget")).toInt(), gadgets.first());
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
    ui->menu->addSeparator();
    QAction *quit = ui->menu->addAction(glow::hint(QT_TRANSLATE_NOOP("Hints", "離開")), this, &QWidget::close);
    quit->setObjectName(QStringLiteral("actionQuit"));
    quit->setShortcut(QStringLiteral("Ctrl+Q"));
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
    // A project's title ends in two blanks so that the mark has a place; the bare name of a new show has none.
    QString title = windowTitle();
    if (title.size() > int(qstrlen("Glowsmith"))) {
        title[title.size() - 1] = u'*';
        setWindowTitle(title);
    }
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
    settings.setValue(QStringLiteral("window/size"), size());
    settings.setValue(QStringLiteral("window/maximize"), isMaximized());
    settings.sync();

    const auto answer =
        QMessageBox::question(this, QString(), tr("<font color='white'>關閉前儲存？</font>"),
                              QMessageBox::Save | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Save);
    if (answer == QMessageBox::Save) {
        on_actionSave_triggered();
        event->accept();
        // A save that failed, or that found no name, leaves the show to the next start, its last seconds included.
        if (recovery != nullptr && recovery->hasUnsaved()) {
            recovery->keep();
        } else if (recovery != nullptr) {
            recovery->discard();
        }
    } else if (answer == QMessageBox::No) {
        event->accept();
        if (recovery != nullptr) {
            recovery->discard();
        }
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
        currentItem->selected = 0; // a step of the history can bring it back
        currentItem = nullptr;
        ui->NEW_radio->setChecked(true);
        updateStatus();
    }
    bar->setValue(scrolled);
}
