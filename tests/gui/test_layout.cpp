// The window's geometry: row labels beside their tracks, nothing cut off at the smallest size in either language, and
// the keys that the form gives away.
#include "app/mainwindow.h"
#include "song/mytime.h"
#include "support/testenv.h"
#include "timeline/mylabel.h"
#include "timeline/timeline.h"
#include "timeline/timelineheaders.h"
#include "timeline/timescale.h"
#include "ui_mainwindow.h"

#include <QTranslator>
#include <QtTest>

class TestLayout : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void labelsStandInTheirRows_data();
    void labelsStandInTheirRows();
    void labelsStayWhenTheWaveformIsSqueezed();
    void nothingIsCutOff_data();
    void nothingIsCutOff();
    void spacePlays();

private:
    void build(const QSize &size)
    {
        window.reset(new MainWindow);
        ui = window->ui;
        window->resize(size);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.data()));
    }
    QRect inWindow(const QWidget *widget) const
    {
        return QRect(widget->mapTo(window.data(), QPoint(0, 0)), widget->size());
    }
    void dragWaveform(int dy);
    QString misplacedRow() const;
    QString cutOff() const;

    QScopedPointer<TestEnv> env;
    QScopedPointer<MainWindow> window;
    Ui::MainWindow *ui = nullptr;
};

void TestLayout::init()
{
    env.reset(new TestEnv);
    msPerPixel = 10.0F;
}

void TestLayout::cleanup()
{
    window.reset();
    env.reset();
}

// Draws the handle between the tracks and the waveform.
void TestLayout::dragWaveform(int dy)
{
    QSplitterHandle *handle = ui->timeline_splitter->handle(1);
    const QPoint from(50, 1);
    const QPoint to = from + QPoint(0, dy);
    const QPoint globalTo = handle->mapToGlobal(to);
    QTest::mousePress(handle, Qt::LeftButton, Qt::NoModifier, from);
    QMouseEvent move(QEvent::MouseMove, to, globalTo, Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(handle, &move);
    QTest::mouseRelease(handle, Qt::LeftButton, Qt::NoModifier, from);
}

// Empty when every label is beside its track and both panes are cut at the same heights.
QString TestLayout::misplacedRow() const
{
    const QRect tracks = inWindow(ui->timeline_scroll_2);
    const QRect labels = inWindow(ui->timeline_rowheader);
    if (tracks.top() != labels.top() || tracks.bottom() != labels.bottom()) {
        return QStringLiteral("panes %1..%2 and %3..%4")
            .arg(tracks.top())
            .arg(tracks.bottom())
            .arg(labels.top())
            .arg(labels.bottom());
    }
    for (const Timeline *track : window->timelines) {
        const int trackY = inWindow(track).top();
        const int labelY = inWindow(track->rowLabel).top();
        if (trackY != labelY)
            return QStringLiteral("row %1: %2 and %3").arg(track->rowLabel->text()).arg(trackY).arg(labelY);
        if (inWindow(track).left() != inWindow(ui->timeline_headers).left())
            return QStringLiteral("track and ruler begin at different x");
    }
    return QString();
}

void TestLayout::labelsStandInTheirRows_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("tracks");
    QTest::newRow("smallest, one") << QSize(1000, 720) << 1;
    QTest::newRow("smallest, many") << QSize(1000, 720) << 9;
    QTest::newRow("usual") << QSize(1300, 885) << 3;
    QTest::newRow("large, many") << QSize(1500, 1150) << 12;
}

void TestLayout::labelsStandInTheirRows()
{
    QFETCH(QSize, size);
    QFETCH(int, tracks);
    build(size);
    while (window->timelines.size() < tracks)
        window->on_timeline_add_clicked();
    QTRY_COMPARE(misplacedRow(), QString());
    QScrollBar *bar = ui->timeline_vertical_scrollbar;
    for (const int value : {bar->maximum(), bar->maximum() / 2, 7}) {
        bar->setValue(value);
        QTRY_COMPARE(misplacedRow(), QString());
    }
    // The user draws the waveform larger and the window smaller, and both back again.
    for (const int dy : {-30, 20, 500}) {
        dragWaveform(dy);
        QTRY_COMPARE(misplacedRow(), QString());
    }
    window->resize(1200, 900);
    QTRY_COMPARE(misplacedRow(), QString());
    window->resize(size);
    QTRY_COMPARE(misplacedRow(), QString());
}

// A large waveform has to give way when the pane becomes low, without anybody moving the handle.
void TestLayout::labelsStayWhenTheWaveformIsSqueezed()
{
    build(QSize(1300, 1150));
    dragWaveform(-ui->timeline_splitter->height());
    QTRY_VERIFY(ui->audio_frame->height() > 200);
    QTRY_COMPARE(misplacedRow(), QString());
    const int waveform = ui->audio_frame->height();
    window->resize(1000, 720);
    QTRY_VERIFY(ui->audio_frame->height() < waveform);
    QTRY_COMPARE(misplacedRow(), QString());
    window->resize(1300, 1150);
    QTRY_COMPARE(misplacedRow(), QString());
}

// Empty when every control with a text is as large as the text needs and lies inside everything that holds it.
QString TestLayout::cutOff() const
{
    const QList<QWidget *> widgets = window->findChildren<QWidget *>();
    for (const QWidget *widget : widgets) {
        if (!widget->isVisible() || widget->window() != window.data())
            continue;
        const bool holdsText = qobject_cast<const QAbstractButton *>(widget) || qobject_cast<const QLabel *>(widget) ||
                               qobject_cast<const QAbstractSpinBox *>(widget) ||
                               qobject_cast<const QComboBox *>(widget);
        // Paths and names of songs may be longer than any window.
        if (!holdsText || widget->sizePolicy().horizontalPolicy() == QSizePolicy::Ignored ||
            widget->objectName().startsWith(QLatin1String("qt_")))
            continue;
        const bool onTrack = ui->timeline_scroll->isAncestorOf(widget) || ui->timeline_rowheader->isAncestorOf(widget);
        if (onTrack)
            continue;
        const QSize least = widget->minimumSizeHint();
        if (widget->width() < least.width() || widget->height() < least.height())
            return QStringLiteral("%1 is %2x%3, needs %4x%5")
                .arg(widget->objectName())
                .arg(widget->width())
                .arg(widget->height())
                .arg(least.width())
                .arg(least.height());
        for (const QWidget *holder = widget->parentWidget(); holder; holder = holder->parentWidget()) {
            if (!holder->rect().contains(QRect(widget->mapTo(holder, QPoint(0, 0)), widget->size())))
                return widget->objectName() + QStringLiteral(" leaves ") + holder->objectName();
        }
    }
    return QString();
}

void TestLayout::nothingIsCutOff_data()
{
    QTest::addColumn<bool>("english");
    QTest::addColumn<QSize>("size");
    QTest::newRow("Chinese, smallest") << false << QSize(1000, 720);
    QTest::newRow("Chinese, usual") << false << QSize(1300, 885);
    QTest::newRow("English, smallest") << true << QSize(1000, 720);
    QTest::newRow("English, usual") << true << QSize(1300, 885);
}

void TestLayout::nothingIsCutOff()
{
    QFETCH(bool, english);
    QFETCH(QSize, size);
    QTranslator translator;
    if (english) {
        QVERIFY(translator.load(QStringLiteral(":/language/language/english.qm")));
        QVERIFY(QCoreApplication::installTranslator(&translator));
    }
    build(size);
    QCOMPARE(ui->menu->title(), english ? QStringLiteral("File") : QStringLiteral("檔案"));
    for (int tab = 0; tab < ui->Mode_Pic->count(); ++tab) {
        ui->Mode_Pic->setCurrentIndex(tab);
        QTRY_COMPARE(cutOff(), QString());
    }
    QCOMPARE(window->size(), size);
}

// A key that a button and an action both hold is ambiguous, and then neither answers.
void TestLayout::spacePlays()
{
    build(QSize(1300, 885));
    for (QWidget *focus : {static_cast<QWidget *>(ui->timeline_scroll), static_cast<QWidget *>(ui->Song_Stop),
                           static_cast<QWidget *>(ui->Song_Slider), static_cast<QWidget *>(ui->AutoRepeat)}) {
        window->activateWindow();
        focus->setFocus();
        QTRY_VERIFY(focus->hasFocus());
        const bool running = ui->Song_time->clockTimer->isActive();
        QTest::keyClick(focus, Qt::Key_Space);
        QCOMPARE(ui->Song_time->clockTimer->isActive(), !running);
        QVERIFY(ui->AutoRepeat->isChecked());
    }
}

QTEST_MAIN(TestLayout)
#include "test_layout.moc"
