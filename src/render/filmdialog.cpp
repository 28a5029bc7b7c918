#include "render/filmdialog.h"

#include "forms/hints.h"
#include "forms/style.h"
#include "render/filmthread.h"
#include "show/film/filmrenderer.h"
#include "show/model/showtime.h"
#include "ui_filmdialog.h"

#include <QEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QSignalBlocker>

#include <algorithm>
#include <utility>

namespace {

const QSize commonSizes[] = {{1280, 720}, {1920, 1080}, {854, 480}, {640, 360}, {1080, 1080}, {1080, 1920}};

QString sizeText(const QSize &size)
{
    return QStringLiteral("%1 × %2").arg(size.width()).arg(size.height());
}

} // namespace

FilmDialog::FilmDialog(std::function<glow::FilmShow()> source, int track, QString offered, QWidget *parent)
    : QDialog(parent)
    , ui(new Ui::FilmDialog)
    , showNow(std::move(source))
    , goal(std::move(offered))
{
    ui->setupUi(this);
    glow::applyStyle(this);
    glow::addHints(this);
    setAttribute(Qt::WA_DeleteOnClose);
    for (const QSize &size : commonSizes) {
        ui->size->addItem(sizeText(size));
    }
    ui->track->addItem(tr("全部"), glow::allTracks);
    ui->progress->hide();
    refreshShow();
    ui->track->setCurrentIndex(std::max(0, ui->track->findData(track)));
    choicesChanged();
    ui->moment->setValue((ui->moment->minimum() + ui->moment->maximum()) / 2);
    connectControls();
}

FilmDialog::~FilmDialog()
{
    thread.reset(); // cancels, and is heard of no more
    delete ui;
}

bool FilmDialog::isBusy() const
{
    return thread != nullptr;
}

void FilmDialog::connectControls()
{
    connect(ui->track, qOverload<int>(&QComboBox::currentIndexChanged), this, &FilmDialog::choicesChanged);
    connect(ui->size, &QComboBox::editTextChanged, this, &FilmDialog::choicesChanged);
    connect(ui->rate, qOverload<int>(&QSpinBox::valueChanged), this, &FilmDialog::choicesChanged);
    connect(ui->song, &QCheckBox::toggled, this, &FilmDialog::choicesChanged);
    connect(ui->timeCode, &QCheckBox::toggled, this, &FilmDialog::choicesChanged);
    connect(ui->from, &QTimeEdit::timeChanged, this, &FilmDialog::choicesChanged);
    connect(ui->to, &QTimeEdit::timeChanged, this, [this] {
        toTheEnd = false;
        choicesChanged();
    });
    connect(ui->moment, &QSlider::valueChanged, this, &FilmDialog::showFrame);
    connect(ui->start, &QPushButton::clicked, this, &FilmDialog::begin);
    connect(ui->cancel, &QPushButton::clicked, this, &FilmDialog::cancelOrClose);
}

// The tracks that there are now, and the song; the choices stay as far as they can.
void FilmDialog::refreshShow()
{
    const QString lastSong = filmed.songPath;
    filmed = showNow();
    if (filmed.songPath != lastSong || song.state != glow::SongState::Readable || !QFileInfo(lastSong).isFile()) {
        song = glow::askSong(filmed.songPath);
    }
    QVector<int> numbers{glow::allTracks};
    for (const glow::FilmTrack &track : qAsConst(filmed.tracks)) {
        numbers.append(track.number);
    }
    const QSignalBlocker quiet(ui->track);
    while (ui->track->count() < numbers.size()) {
        ui->track->addItem(QString(), 0);
    }
    while (ui->track->count() > numbers.size()) {
        ui->track->removeItem(ui->track->count() - 1);
    }
    for (int i = 1; i < numbers.size(); ++i) {
        ui->track->setItemText(i, QString::number(numbers.at(i)));
        ui->track->setItemData(i, numbers.at(i));
    }
    choicesChanged();
}

glow::FilmOptions FilmDialog::chosen() const
{
    glow::FilmOptions options;
    options.track = ui->track->currentData().toInt();
    options.size = glow::parseFilmSize(ui->size->currentText());
    options.rate = ui->rate->value();
    options.song = ui->song->isChecked();
    options.timeCode = ui->timeCode->isChecked();
    options.fromMs = glow::msOf(ui->from->time());
    options.toMs = toTheEnd ? glow::untilTheEnd : glow::msOf(ui->to->time());
    return options;
}

glow::PlannedFilm FilmDialog::planFor(const QString &path) const
{
    glow::FilmOptions options = chosen();
    options.goal = path;
    return glow::planFilm(filmed, options, song.ms);
}

void FilmDialog::choicesChanged()
{
    const int endMs = glow::filmEndMs(filmed, chosen(), song.ms);
    constexpr int msPerHour = 60 * 60 * 1000;
    const QString format = endMs < msPerHour ? QStringLiteral("mm:ss.zzz") : QStringLiteral("h:mm:ss.zzz");
    for (QTimeEdit *field : {ui->from, ui->to}) {
        const QSignalBlocker quiet(field);
        field->setDisplayFormat(format);
        if (field == ui->to && toTheEnd) {
            field->setTime(glow::timeOf(std::min(endMs, glow::msPerDay - 1)));
        }
    }
    {
        const QSignalBlocker quiet(ui->moment);
        const int fromMs = glow::msOf(ui->from->time());
        ui->moment->setRange(fromMs, std::max(fromMs, glow::msOf(ui->to->time())));
    }
    ui->song->setEnabled(song.state != glow::SongState::NoSong);

    glow::PlannedFilm planned = planFor(QStringLiteral("film.mp4"));
    const bool possible = planned.error == glow::FilmError::None;
    ui->start->setEnabled(possible);
    const bool noEncoder = outcome.isEmpty() && glow::findEncoder().isEmpty();
    const QString hint = noEncoder ? glow::filmErrorText(glow::FilmError::NoEncoder, QString()) : outcome;
    ui->status->setText(possible ? hint : glow::filmErrorText(planned.error, planned.detail));
    renderer.reset();
    if (possible) {
        planned.plan.size.scale(ui->preview->size() * devicePixelRatioF(), Qt::KeepAspectRatio);
        renderer = std::make_unique<glow::FilmRenderer>(planned.plan);
    }
    showFrame();
}

void FilmDialog::showFrame()
{
    ui->momentTime->setText(glow::filmTimeText(ui->moment->value()));
    if (renderer == nullptr) {
        ui->preview->clear();
        return;
    }
    QPixmap frame = QPixmap::fromImage(renderer->moment(ui->moment->value()));
    frame.setDevicePixelRatio(devicePixelRatioF());
    ui->preview->setPixmap(frame);
}

bool FilmDialog::agreesToSilence()
{
    const bool lost = song.state == glow::SongState::Lost;
    if (!ui->song->isChecked() || (!lost && song.state != glow::SongState::Unreadable)) {
        return true;
    }
    const QString question =
        lost ? tr("找不到歌曲 %1\n要輸出沒有聲音的影片嗎？") : tr("無法讀取歌曲 %1\n要輸出沒有聲音的影片嗎？");
    return QMessageBox::question(this, windowTitle(), question.arg(filmed.songPath),
                                 QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes;
}

QString FilmDialog::askForGoal()
{
    const QStringList kinds{QStringLiteral("MP4 (*.mp4)"), QStringLiteral("WebM (*.webm)"),
                            QStringLiteral("GIF (*.gif)"), QStringLiteral("PNG (*.png)")};
    QString kind;
    QString path = QFileDialog::getSaveFileName(this, windowTitle(), goal, kinds.join(QStringLiteral(";;")), &kind);
    if (path.isEmpty() || glow::filmFormat(path)) {
        return path;
    }
    path += u'.' +
            QStringList{QStringLiteral("mp4"), QStringLiteral("webm"), QStringLiteral("gif"), QStringLiteral("png")}.at(
                std::max(0, kinds.indexOf(kind)));
    // The file dialog has asked about the name without its end only.
    const bool keep =
        QFileInfo::exists(path) && QMessageBox::question(this, windowTitle(), tr("%1 已存在，是否取代？").arg(path),
                                                         QMessageBox::Yes | QMessageBox::No) != QMessageBox::Yes;
    return keep ? QString() : path;
}

void FilmDialog::begin()
{
    refreshShow();
    if (!ui->start->isEnabled() || !agreesToSilence()) {
        return;
    }
    const QString path = askForGoal();
    if (path.isEmpty()) {
        return;
    }
    goal = path;
    glow::PlannedFilm planned = planFor(path);
    if (planned.error != glow::FilmError::None) {
        ui->status->setText(glow::filmErrorText(planned.error, planned.detail));
        return;
    }
    if (planned.plan.format == glow::FilmFormat::Png) {
        planned.plan.fromMs = ui->moment->value();
    }
    thread = std::make_unique<FilmThread>(planned.plan);
    connect(thread.get(), &FilmThread::progressed, this, [this](int done, int total, int leftMs) {
        ui->progress->setMaximum(total);
        ui->progress->setValue(done);
        ui->status->setText(done < total ? tr("輸出中，剩餘 %1").arg(glow::filmTimeText(leftMs).section(u'.', 0, 0))
                                         : tr("即將完成"));
    });
    connect(thread.get(), &QThread::finished, this, &FilmDialog::finish);
    outcome.clear();
    setBusy(true);
    thread->start();
}

void FilmDialog::cancelOrClose()
{
    if (isBusy()) {
        thread->cancel();
    } else {
        close();
    }
}

void FilmDialog::finish()
{
    const glow::FilmResult result = thread->result;
    thread.reset();
    setBusy(false);
    outcome = result.error == glow::FilmError::None ? tr("影片已完成：%1").arg(goal)
                                                    : glow::filmErrorText(result.error, result.detail);
    choicesChanged();
}

void FilmDialog::setBusy(bool busy)
{
    ui->choices->setEnabled(!busy);
    ui->start->setEnabled(!busy);
    ui->progress->setValue(0);
    ui->progress->setVisible(busy);
}

void FilmDialog::changeEvent(QEvent *event)
{
    QDialog::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow() && !isBusy()) {
        refreshShow();
    }
}

void FilmDialog::resizeEvent(QResizeEvent *event)
{
    QDialog::resizeEvent(event);
    if (!isBusy()) {
        choicesChanged();
    }
}
