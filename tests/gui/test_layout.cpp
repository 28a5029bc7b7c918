// The window as a user meets it: row labels beside their tracks, nothing cut off at the smallest size in any
// language, a play-head that is always seen, and a name for every control.
#include "forms/style.h"
#include "show/base/languages.h"
#include "support/windowtest.h"

#include <QAccessible>
#include <QLabel>
#include <QRegularExpression>
#include <QScreen>

namespace {

bool isOneOf(const QWidget *widget, std::initializer_list<const char *> classes)
{
    return std::any_of(classes.begin(), classes.end(), [widget](const char *name) { return widget->inherits(name); });
}

// What belongs to a compound control is named with it: fields of number boxes, lists, scroll bars.
bool isPart(const QWidget *widget)
{
    const QWidget *holder = widget->parentWidget();
    const auto *area = qobject_cast<const QAbstractScrollArea *>(holder);
    return widget->objectName().startsWith("qt_") || isOneOf(holder, {"QComboBox", "QComboBoxPrivateContainer"}) ||
           (area != nullptr && area->viewport() == widget) ||
           (widget->inherits("QScrollBar") && holder->objectName().startsWith("qt_scrollarea_"));
}

} // namespace

class TestLayout : public WindowTest
{
    Q_OBJECT

private:
    QRect inWindow(const QWidget *widget) const
    {
        return QRect(widget->mapTo(window.data(), QPoint(0, 0)), widget->size());
    }

    // Draws the handle between the tracks and the waveform.
    void dragWaveform(int dy)
    {
        QSplitterHandle *handle = ui->timeline_splitter->handle(1);
        const QPoint to(50, dy);
        QTest::mousePress(handle, Qt::LeftButton, Qt::NoModifier, QPoint(50, 0));
        QMouseEvent move(QEvent::MouseMove, to, handle->mapToGlobal(to), Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(handle, &move);
        QTest::mouseRelease(handle, Qt::LeftButton, Qt::NoModifier, to);
    }

    // Empty when every label is beside its track and both panes are cut at the same heights.
    QString misplacedRow() const
    {
        const QRect tracks = inWindow(ui->timeline_scroll_2);
        const QRect labels = inWindow(ui->timeline_rowheader);
        const bool aligned = tracks.top() == labels.top() && tracks.bottom() == labels.bottom() &&
                             inWindow(window->currentTimeline).left() == inWindow(ui->timeline_headers).left();
        return aligned ? whatIsWrong(*window) : "the panes of tracks, labels and ruler differ";
    }

    // Empty when every control with a text is as large as the text needs and lies inside everything that holds it.
    QString cutOff() const
    {
        for (const QWidget *widget : window->findChildren<QWidget *>()) {
            const bool holdsText = isOneOf(widget, {"QAbstractButton", "QLabel", "QAbstractSpinBox", "QComboBox"});
            // Paths and names of songs may be longer than any window; tracks and labels scroll.
            if (!holdsText || !widget->isVisible() || widget->window() != window.data() ||
                widget->sizePolicy().horizontalPolicy() == QSizePolicy::Ignored ||
                widget->objectName().startsWith("qt_") || ui->timeline_scroll->isAncestorOf(widget) ||
                ui->timeline_rowheader->isAncestorOf(widget))
                continue;
            if (widget->size() != widget->size().expandedTo(widget->minimumSizeHint()))
                return widget->objectName() + " is too small";
            for (const QWidget *holder = widget->parentWidget(); holder; holder = holder->parentWidget()) {
                if (!holder->rect().contains(QRect(widget->mapTo(holder, QPoint(0, 0)), widget->size())))
                    return widget->objectName() + " leaves " + holder->objectName();
            }
        }
        return QString();
    }

private slots:
    void labelsStandInTheirRows()
    {
        for (const auto &[size, tracks] : {qMakePair(QSize(1000, 720), 9), qMakePair(QSize(1500, 1150), 12)}) {
            window->resize(size);
            while (window->timelines.size() < tracks)
                window->on_timeline_add_clicked();
            QTRY_COMPARE(misplacedRow(), QString());
            QScrollBar *bar = ui->timeline_vertical_scrollbar;
            for (const int value : {bar->maximum(), 7}) {
                bar->setValue(value);
                QTRY_COMPARE(misplacedRow(), QString());
            }
            for (const int dy : {-30, 20, 500}) {
                dragWaveform(dy);
                QTRY_COMPARE(misplacedRow(), QString());
            }
        }

        // A large waveform has to give way when the pane becomes low, without anybody moving the handle.
        dragWaveform(-ui->timeline_splitter->height());
        QTRY_VERIFY(ui->audio_frame->height() > 200);
        const int waveform = ui->audio_frame->height();
        window->resize(1000, 720);
        QTRY_VERIFY(ui->audio_frame->height() < waveform);
        QTRY_COMPARE(misplacedRow(), QString());
    }

    void nothingIsCutOffInAnyLanguage()
    {
        glow::Languages languages;
        for (const int language : {AppSettings::Chinese, AppSettings::English, AppSettings::CompleteEnglish}) {
            languages.speak(language);
            cleanup();
            init();
            QCOMPARE(ui->menu->title(), QString(language == AppSettings::Chinese ? "檔案" : "File"));
            for (const QSize size : {QSize(1300, 885), QSize(1000, 720)}) {
                window->resize(size);
                for (int tab = 0; tab < ui->Mode_Pic->count(); ++tab) {
                    ui->Mode_Pic->setCurrentIndex(tab);
                    QTRY_COMPARE(cutOff(), QString());
                }
                QCOMPARE(window->size(), size);
            }
            QVERIFY(!ui->Spe_show->verticalScrollBar()->isVisible()); // the effect's whole height is seen
        }
    }

    // Scaled, a widget's pixel is a broken number of the screen's dots, and what is seen is up to their rounding.
    void thePlayHeadIsSeenEverywhere()
    {
        Indicator *head = ui->timeline_headers->indicator;
        const int bottom = head->parentWidget()->height() - head->y();
        const int heights[] = {2, bottom / 2, bottom - 2};
        for (int x = 0; x < 100; ++x) {
            head->setIndicatorX(x, false);
            const auto seen = [&] {
                const QPoint place = head->mapToGlobal(QPoint(-2, 0));
                const QImage dots = window->screen()->grabWindow(0, place.x(), place.y(), 5, bottom).toImage();
                return std::all_of(std::begin(heights), std::end(heights), [&](int height) {
                    int lit = 0;
                    for (int column = 0; column < dots.width(); ++column)
                        lit += dots.pixel(column, height * dots.height() / bottom) == qRgb(10, 250, 250);
                    return lit >= 1 && lit <= qCeil(window->devicePixelRatioF());
                });
            };
            QTRY_VERIFY2(seen(), qPrintable(QString::number(x)));
        }
    }

    // For whoever listens to a screen reader, or rests the mouse on a picture.
    void everyControlHasAName()
    {
        glow::Languages languages;
        languages.speak(AppSettings::English);
        cleanup();
        init();
        QVERIFY(ui->dockWidget_3->isAncestorOf(window->focusWidget())); // a fresh window starts at the left
        ui->Mode_Pic->setCurrentIndex(1);
        window->on_Add_Button_clicked();
        for (QWidget *widget : window->findChildren<QWidget *>()) {
            const bool control = widget->focusPolicy() != Qt::NoFocus ||
                                 isOneOf(widget, {"QAbstractButton", "QAbstractSlider", "MyLabel", "QProgressBar"});
            if (!control || isPart(widget))
                continue;
            QAccessibleInterface *spoken = QAccessible::queryAccessibleInterface(widget);
            QVERIFY2(spoken != nullptr && !spoken->text(QAccessible::Name).isEmpty(),
                     qPrintable(widget->objectName() + ' ' + widget->metaObject()->className()));
            const bool wordless = isOneOf(widget, {"QSlider", "QAbstractSpinBox", "QComboBox", "QProgressBar"}) ||
                                  (isOneOf(widget, {"QAbstractButton"}) && !widget->property("icon").isNull() &&
                                   widget->property("text").toString().isEmpty());
            const bool isPattern = qobject_cast<TimelineItem *>(widget) != nullptr;
            QVERIFY2(!wordless || !widget->toolTip().isEmpty(), qPrintable(widget->objectName()));
            const QRegularExpression chinese("[\\x{4e00}-\\x{9fff}]");
            QVERIFY2(isPattern || !(widget->toolTip() + widget->accessibleName()).contains(chinese),
                     qPrintable(widget->objectName()));
        }
        QCOMPARE(ui->Song_play->toolTip(), QString("Music paly/pause (Space)"));
        const QAction *last = ui->menu->actions().last();
        QCOMPARE(last->text() + ' ' + last->shortcut().toString(), QString("Quit Ctrl+Q"));
        // Behind what has always been there stands what came later, and quitting at the end.
        const QList<QAction *> entries = ui->menu->actions();
        QVERIFY(entries.at(entries.indexOf(ui->actionFilm) - 1)->isSeparator());
    }

    void styleSheetParsesAndFindsItsPictures()
    {
        const QRegularExpression url("url\\(([^)]*)\\)");
        for (auto it = url.globalMatch(glow::styleSheet()); it.hasNext();) {
            const QString path = it.next().captured(1);
            QVERIFY2(!QImage(path).isNull(), qPrintable(path));
        }
        // One unreadable rule makes Qt drop the sheet; then the label would keep the palette's colour.
        QMessageBox box(window.data());
        box.setText("text");
        auto *label = box.findChild<QLabel *>("qt_msgbox_label");
        QVERIFY(label);
        label->ensurePolished();
        QCOMPARE(label->palette().color(QPalette::WindowText), QColor(255, 255, 255));
    }
};

QTEST_MAIN(TestLayout)
#include "test_layout.moc"
