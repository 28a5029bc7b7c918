// Tracks, patterns, ruler and the small widgets by themselves, without the window around them.
#include "app/propvalues.h"
#include "timeline/dragformat.h"
#include "timeline/indicator.h"
#include "timeline/itemtexture.h"
#include "timeline/mybutton.h"
#include "timeline/mymenu.h"
#include "timeline/myslider.h"
#include "timeline/scrollarea.h"
#include "timeline/timeline.h"
#include "timeline/timelineheaders.h"
#include "timeline/timelineitem.h"
#include "timeline/timescale.h"

#include <QApplication>
#include <QClipboard>
#include <QMimeData>
#include <QPainter>
#include <QRandomGenerator>
#include <QScrollBar>
#include <QToolTip>
#include <QWheelEvent>
#include <QtTest>

class TestTrack : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void itemEncodesItselfAnew();
    void blobFollowsEveryChange();
    void longerOldBlobLeavesItsTail();
    void speedModeCountsByItsRule();
    void foreignBlobsMakeCalmItems();
    void itemStandsByItsTimes();
    void leavingTheTrackCutsAllTies();
    void sortingActsOnTheWidgets();
    void splitPiecesKeepTheSettings();
    void randomPlacementsKeepTheTrackWhole();
    void bandIsNoItem();
    void doubleClickJumpsByTheDefaultScale();
    void pasteLandsAtThePlayHead();
    void copiesFillTheItem();
    void aDayLongItemPaintsWhatIsSeen();
    void rulerPaintsInPartsWhatItPaintsWhole_data();
    void rulerPaintsInPartsWhatItPaintsWhole();
    void playHeadTellsNewPixelsOnly();
    void startMarkHoldsItsPixel();
    void wheelScrollsAndZooms();
    void smallWidgets();

private:
    TimelineItem *add(int startMs, int endMs, const QString &text = QStringLiteral("1?#ffffff"));
    QStringList listed() const;

    QScopedPointer<QWidget> host; // a window, so that sizes are real at once
    TimelineHeaders *ruler = nullptr;
    Timeline *track = nullptr;
};

namespace {

QPixmap picture(int width, const QColor &colour)
{
    QPixmap pixmap(width, 85);
    pixmap.fill(colour);
    return pixmap;
}

glow::PatternRecord record(int startMs, int endMs)
{
    glow::PatternRecord made;
    made.thumbnail = picture(170, Qt::red);
    made.startTime = glow::timeOf(startMs);
    made.endTime = glow::timeOf(endMs);
    made.repeatCount = 1;
    made.patternKind = glow::ColourPattern;
    made.settingsText = QStringLiteral("1?#ffffff");
    return made;
}

QString spanText(const TimelineItem *item)
{
    return QStringLiteral("%1-%2").arg(glow::msOf(item->startTime)).arg(glow::msOf(item->endTime));
}

// The ruler by its plain rule: tick after tick from 0 on, whatever is seen of it.
class PlainRuler : public QWidget
{
public:
    int hoverX = 0;

protected:
    void paintEvent(QPaintEvent *e) override
    {
        Q_UNUSED(e)
        QPainter painter(this);
        const float zoom = msPerPixel;
        int i = 0;
        for (float x = 0; x < float(width()); x += tickMs / zoom, ++i) {
            drawTick(painter, i, int(x), zoom);
        }
        painter.setPen(QColor(200, 255, 255));
        painter.drawLine(hoverX, 17, hoverX, 30);
    }

private:
    static void drawTick(QPainter &painter, int i, int x, float zoom)
    {
        if ((i % 100 == 0 && zoom <= 23.0F) || (i % 500 == 0 && zoom > 23.0F)) {
            painter.setPen(QColor(150, 150, 150));
            painter.drawLine(x, 17, x, 30);
        } else if ((i % 10 == 0 && zoom <= 23.0F) || (i % 50 == 0 && zoom > 23.0F)) {
            painter.setPen(QColor(120, 120, 120));
            painter.drawLine(x, 21, x, 30);
        } else if (zoom <= 5.0F) {
            painter.setPen(QColor(100, 100, 100));
            painter.drawLine(x, 25, x, 30);
        }
        const QTime time = QTime(0, 0).addMSecs(i * 10);
        if ((i % 100 == 0 && zoom <= 10.0F) || (i % 200 == 0 && zoom <= 23.0F) || (i % 500 == 0 && zoom > 23.0F)) {
            painter.setPen(Qt::white);
            painter.drawText(x - 16, 15, time.toString(QStringLiteral("mm:ss")));
        } else if (i % 20 == 0 && zoom <= 2.5F) {
            painter.setPen(QColor(180, 180, 180));
            painter.drawText(x - 15, 15, time.toString(QStringLiteral(".zzz")));
        }
    }
};

// A part of a widget as it paints itself, whatever the widget's width.
QImage painted(QWidget *widget, const QRect &part)
{
    QImage image(part.size(), QImage::Format_RGB32);
    image.fill(Qt::darkGreen);
    widget->render(&image, QPoint(), part, QWidget::RenderFlags());
    return image;
}

} // namespace

void TestTrack::init()
{
    msPerPixel = 10.0F;
    ledCount = 36;
    frameRate = 1500.0F;
    host.reset(new QWidget);
    host->resize(800, 300);
    ruler = new TimelineHeaders(host.data());
    ruler->resize(30000, 200);
    track = new Timeline(ruler);
    track->setGeometry(0, 40, 30000, 55);
    host->show();
    ruler->timelineLengthMs = 300000;
}

void TestTrack::cleanup()
{
    host.reset();
    msPerPixel = 10.0F;
}

TimelineItem *TestTrack::add(int startMs, int endMs, const QString &text)
{
    glow::PatternRecord made = record(startMs, endMs);
    made.settingsText = text;
    auto *item = new TimelineItem(glow::writePattern(made), track);
    track->addTimelineItem(item);
    return item;
}

QStringList TestTrack::listed() const
{
    QStringList texts;
    for (const TimelineItem *item : qAsConst(track->items)) {
        texts << spanText(item);
    }
    return texts;
}

void TestTrack::itemEncodesItselfAnew()
{
    // The same picture with a comment chunk (its checksum is of no interest): equal as a pattern, other bytes.
    QByteArray blob = glow::writePattern(record(1000, 2000));
    const int header = blob.indexOf("IHDR") + 4 + 13 + 4;
    blob.insert(header, QByteArray::fromHex("0000000474455874"
                                            "41004242"
                                            "00000000"));
    const TimelineItem item(blob, track);
    QCOMPARE(item.thumbnail.size(), QSize(170, 85));
    QVERIFY(item.itemData != blob);
    QVERIFY(item.itemData.startsWith(glow::writePattern(record(1000, 2000))));
    QCOMPARE(item.itemData.size(), blob.size());
    QCOMPARE(item.itemId, QStringLiteral("0x%1").arg(quintptr(&item), 16, 16, QLatin1Char('0')));
    QCOMPARE(item.toolTip(), QStringLiteral("長度: 00:01.000\n開始時間: 00:01.000\n結束時間: 00:02.000"));
}

void TestTrack::blobFollowsEveryChange()
{
    TimelineItem *item = add(1000, 2000);
    const auto inStep = [item] { return item->itemData == glow::writePattern(*item); };
    QVERIFY(inStep());
    item->setTimes(glow::timeOf(500), glow::timeOf(2500));
    QVERIFY(inStep());
    item->settingsText = QStringLiteral("1?#a0b0c0");
    item->setTimes(glow::timeOf(0), glow::timeOf(70000));
    QVERIFY(inStep());
    QCOMPARE(glow::readPattern(item->itemData).endTime, QTime(0, 1, 10));

    // A new picture is encoded, and one painted upon too.
    item->thumbnail = picture(20, Qt::green);
    item->loadData(glow::writePattern(*item));
    QVERIFY(inStep());
    QPainter(&item->thumbnail).fillRect(0, 0, 5, 5, Qt::black);
    item->updateData();
    QVERIFY(glow::readPattern(item->itemData).thumbnail.toImage() == item->thumbnail.toImage());

    // A blob from outside with the picture unchanged: its thumbnail's bytes need not be ours.
    glow::PatternRecord other = *item;
    other.thumbnail = picture(300, Qt::blue);
    item->itemData = glow::writePattern(other);
    item->setTimes(glow::timeOf(10), glow::timeOf(20));
    QVERIFY(item->itemData.startsWith(glow::writePattern(*item)));
}

void TestTrack::longerOldBlobLeavesItsTail()
{
    glow::PatternRecord made = record(0, 1000);
    TimelineItem item(glow::writePattern(made) + "tail", track);
    QCOMPARE(item.itemData, glow::writePattern(made) + "tail");
    item.settingsText.chop(2);
    item.updateData();
    made.settingsText.chop(2);
    QCOMPARE(item.itemData.left(glow::writePattern(made).size()), glow::writePattern(made));
    QCOMPARE(item.itemData.size(), glow::writePattern(made).size() + 4 + 4);
    QVERIFY(item.itemData.endsWith("tail"));
}

void TestTrack::speedModeCountsByItsRule()
{
    TimelineItem *item = add(0, 1000);
    item->repeatCount = 3;
    item->setTimes(glow::timeOf(0), glow::timeOf(5000));
    QCOMPARE(item->repeatCount, 3);

    // 170 by 85 at 36 LEDs is 72 columns wide: 5000 * 10 / 720 = 69.4, doubled above 1500 columns a second: 138.9.
    item->speedValue = 10;
    item->setTimes(glow::timeOf(0), glow::timeOf(5000));
    QCOMPARE(item->repeatCount, 69);
    frameRate = 1501.0F;
    item->setTimes(glow::timeOf(0), glow::timeOf(5000));
    QCOMPARE(item->repeatCount, 139);
    item->setTimes(glow::timeOf(700), glow::timeOf(700));
    QCOMPARE(item->repeatCount, 1);
    ledCount = 0;
    item->setTimes(glow::timeOf(0), glow::timeOf(5000));
    QCOMPARE(item->repeatCount, 1);
}

void TestTrack::foreignBlobsMakeCalmItems()
{
    QRandomGenerator random(11);
    const QByteArray whole = glow::writePattern(record(1000, 9000));
    for (int round = 0; round < 300; ++round) {
        QByteArray blob = whole;
        if (round % 3 == 0) {
            blob.truncate(int(random.bounded(quint32(blob.size()))));
        } else if (round % 3 == 1) {
            // The fields behind the picture: times and counts beyond anything a clock or a user makes.
            const int fields = blob.size() - 18 - 12 - 11 - 8;
            for (int i = fields; i < blob.size() - 18; ++i) {
                blob[i] = char(random.bounded(256U));
            }
        } else {
            for (char &byte : blob) {
                byte = char(random.bounded(256U));
            }
        }
        auto *item = new TimelineItem(blob, track);
        track->addTimelineItem(item);
        item->speedValue = round % 2;
        painted(item, QRect(0, 0, 40, 45));
        track->on_itemDragEnd(blob, item);
        track->itemAt(5);
        item->setTimes(item->startTime, item->endTime);
    }
    const TimelineItem empty(QByteArray(), track);
    QVERIFY(empty.thumbnail.isNull());
    QCOMPARE(glow::msOf(empty.startTime), 0);
    QVERIFY(!empty.isHidden());
}

void TestTrack::itemStandsByItsTimes()
{
    TimelineItem *item = add(1004, 3009);
    QCOMPARE(item->geometry(), QRect(100, 5, 201, 45)); // 100.9, and 2005 ms are 200.5 + 0.5
    TimelineItem *thin = add(2000, 2000);
    QCOMPARE(thin->width(), 2);

    // A pattern placed at the closest zoom is 8 wide at least, one that has seen a zoom change 2, at every zoom.
    msPerPixel = 2.5F;
    emit track->timelineMultiUpdated();
    QCOMPARE(item->geometry(), QRect(402, 5, 802, 45));
    QCOMPARE(thin->width(), 2);
    QCOMPARE(add(4000, 4000)->width(), 8);
    msPerPixel = 40.0F;
    QCOMPARE(add(5000, 5000)->minimumWidth(), 0);
}

void TestTrack::leavingTheTrackCutsAllTies()
{
    TimelineItem *item = add(1000, 2000);
    QSignalSpy clicked(track, &Timeline::itemClicked);
    emit item->itemClicked(item, false);
    QCOMPARE(clicked.size(), 1);
    item->on_itemDelete_clicked();
    QVERIFY(track->items.isEmpty());
    QVERIFY(item->parentWidget() == nullptr);
    QVERIFY(item->isHidden());
    emit item->itemClicked(item, false);
    QCOMPARE(clicked.size(), 1);
    msPerPixel = 5.0F;
    emit track->timelineMultiUpdated();
    QCOMPARE(item->x(), 100);

    // Back on a track it is tied once.
    track->addTimelineItem(item);
    emit item->itemClicked(item, false);
    QCOMPARE(clicked.size(), 2);
    track->deleteTimelineItem(item);
    delete item;
}

void TestTrack::sortingActsOnTheWidgets()
{
    TimelineItem *longer = add(0, 1000);
    TimelineItem *displaced = add(400, 600);
    TimelineItem *covered = add(2000, 2500);
    TimelineItem *covering = add(2000, 3000);
    add(0, 400);
    track->sortItems();
    QCOMPARE(listed(), (QStringList{"0-400", "400-1000", "2000-3000"}));
    QCOMPARE(track->items.at(1), longer);
    QCOMPARE(track->items.at(2), covering);
    QVERIFY(covered->isHidden() && covered->parentWidget() == nullptr);
    // The displaced pattern is on no list and yet stays on screen.
    QVERIFY(!displaced->isHidden() && displaced->parentWidget() == track);
    delete covered;
}

void TestTrack::splitPiecesKeepTheSettings()
{
    TimelineItem *longer = add(0, 10000, QStringLiteral("1?#123456"));
    longer->repeatCount = 9;
    longer->updateData();
    TimelineItem *item = add(4000, 5000);
    QSignalSpy ended(track, &Timeline::itemDragEnd);
    track->on_itemDragEnd(item->itemData, item);
    QCOMPARE(listed(), (QStringList{"0-4000", "4000-5000", "5000-10000"}));
    const TimelineItem *rest = track->items.last();
    QCOMPARE(rest->settingsText, QStringLiteral("1?#123456"));
    QCOMPARE(rest->repeatCount, 9);
    QVERIFY(rest->itemId != longer->itemId);
    QVERIFY(!rest->isHidden());
    QCOMPARE(rest->height(), 45);
    QVERIFY(ended.isEmpty()); // no source widget, no signal

    // In speed mode each piece counts for itself: 72 columns at 36 LEDs, 10 a millisecond and a hundredth.
    longer->speedValue = 10;
    track->deleteTimelineItem(track->items.takeLast());
    longer->setTimes(glow::timeOf(0), glow::timeOf(14400));
    QCOMPARE(longer->repeatCount, 200);
    item->setTimes(glow::timeOf(3600), glow::timeOf(7200));
    track->on_itemDragEnd(item->itemData, item, track);
    QCOMPARE(listed(), (QStringList{"0-3600", "3600-7200", "7200-14400"}));
    QCOMPARE(longer->repeatCount, 50);
    QCOMPARE(track->items.last()->repeatCount, 100);
    QCOMPARE(ended.size(), 1);
    QVERIFY(ended.at(0).at(2).value<Timeline *>() == nullptr);
}

void TestTrack::randomPlacementsKeepTheTrackWhole()
{
    // The moved pattern wins: seen from outside it takes its span from every other one, whose parts keep their
    // settings.
    QRandomGenerator random(21);
    const auto number = [&random](int below) { return int(random.bounded(quint32(below))); };
    QMap<int, QPair<int, QString>> model; // start to end and settings
    for (int round = 0; round < 1000; ++round) {
        const int start = number(300) * 100;
        TimelineItem *item = nullptr;
        if (track->items.size() > 8) {
            item = track->items.at(number(track->items.size()));
            model.remove(glow::msOf(item->startTime));
            track->items.append(track->items.takeAt(track->items.indexOf(item)));
            item->setTimes(glow::timeOf(start), glow::timeOf(start + glow::durationMs(*item)));
        } else {
            item =
                add(start, start + 100 + number(50) * 100, QStringLiteral("1?#%1").arg(round, 6, 10, QLatin1Char('0')));
        }
        const int end = glow::msOf(item->endTime);
        QMap<int, QPair<int, QString>> expected{{start, {end, item->settingsText}}};
        for (auto other = model.constBegin(); other != model.constEnd(); ++other) {
            if (other.key() < qMin(other->first, start)) {
                expected.insert(other.key(), {qMin(other->first, start), other->second});
            }
            if (qMax(other.key(), end) < other->first) {
                expected.insert(qMax(other.key(), end), *other);
            }
        }
        model = expected;

        track->on_itemDragEnd(item->itemData, item);
        QMap<int, QPair<int, QString>> present;
        for (const TimelineItem *one : qAsConst(track->items)) {
            present.insert(glow::msOf(one->startTime), {glow::msOf(one->endTime), one->settingsText});
            QVERIFY(one->parentWidget() == track && !one->isHidden());
            QVERIFY(one->itemData.startsWith(glow::writePattern(*one)));
        }
        QVERIFY2(present == model, qPrintable(QStringLiteral("round %1").arg(round)));
        QCOMPARE(track->findChildren<TimelineItem *>().size(), track->items.size());
    }
}

void TestTrack::bandIsNoItem()
{
    TimelineItem *item = add(1000, 2000);
    track->showReadyBand(true, 1509, 2009);
    QVERIFY(!track->readyBand->isHidden());
    QCOMPARE(track->readyBand->geometry(), QRect(150, 0, 200, 55));
    track->readyBand->raise();
    QCOMPARE(track->itemAt(160), item);
    QVERIFY(track->itemAt(250) == nullptr);
    track->showReadyBand(true, 0, 100); // a second enter without a leave
    QVERIFY(track->readyBand->isHidden());
    track->showReadyBand(true, 0, 100);
    track->showReadyBand(false, 0, 100);
    QVERIFY(track->readyBand->isHidden());

    // The topmost one counts, and nothing outside the track.
    TimelineItem *above = add(1500, 2500);
    QCOMPARE(track->itemAt(160), above);
    item->raise();
    QCOMPARE(track->itemAt(160), item);
    QCOMPARE(track->itemUnderHead(99), item);
    QVERIFY(track->itemUnderHead(98) == nullptr);
    QCOMPARE(add(299000, 310000)->x(), 29900);
    QVERIFY(track->itemAt(29950) != nullptr && track->itemAt(30000) == nullptr);
}

void TestTrack::doubleClickJumpsByTheDefaultScale()
{
    TimelineItem *item = add(1234, 5000);
    QSignalSpy moved(ruler, &TimelineHeaders::indicatorMoved);
    msPerPixel = 2.5F;
    emit item->itemDoubleClicked(item);
    QCOMPARE(ruler->indicator->indicatorTime, QTime(0, 0, 1, 234));
    QCOMPARE(moved.size(), 1);
    QCOMPARE(moved.at(0), (QVariantList{123, true})); // 123.4 + 0.5
    QCOMPARE(ruler->indicator->pos(), QPoint(123, 17));
    emit item->itemDoubleClicked(item);
    QCOMPARE(moved.size(), 1);
}

void TestTrack::pasteLandsAtThePlayHead()
{
    QGuiApplication::clipboard()->clear();
    track->on_itemPaste_clicked();
    QVERIFY(track->items.isEmpty());

    TimelineItem *item = add(1000, 6000);
    item->on_itemCut_clicked();
    QVERIFY(track->items.isEmpty());
    QCOMPARE(QGuiApplication::clipboard()->mimeData()->formats(),
             QStringList{QStringLiteral("timeline/itemByteArray")});
    QCOMPARE(QGuiApplication::clipboard()->mimeData()->data(QStringLiteral("timeline/itemByteArray")), item->itemData);
    delete item;

    QList<TimelineItem *> ended;
    connect(track, &Timeline::itemDragEnd, this,
            [&ended](const QByteArray &orig, TimelineItem *pasted, Timeline *source) {
                QVERIFY(orig.isEmpty() && source == nullptr);
                ended << pasted;
            });
    track->on_itemPaste_clicked();
    ruler->indicator->setIndicatorTime(QTime(0, 0, 2), false);
    track->on_itemPaste_clicked();
    track->on_itemPaste_clicked();
    QCOMPARE(listed(), (QStringList{"0-5000", "2000-7000", "2000-7000"})); // neither sorted nor settled
    QCOMPARE(ended, track->items);
    track->sortItems();
    QCOMPARE(listed(), (QStringList{"0-5000", "2000-7000"}));

    auto *foreign = new QMimeData;
    foreign->setData(QStringLiteral("timeline/itemByteArray"), "no pattern");
    QGuiApplication::clipboard()->setMimeData(foreign);
    track->on_itemPaste_clicked();
    QCOMPARE(track->items.last()->startTime, QTime(0, 0, 2));
}

void TestTrack::copiesFillTheItem()
{
    TimelineItem *item = add(0, 3000);
    QPixmap halves = picture(170, Qt::red);
    QPainter(&halves).fillRect(85, 0, 85, 85, Qt::blue);
    item->thumbnail = halves;
    const auto colourAt = [item](int x) { return painted(item, item->rect()).pixelColor(x, 20); };

    // Fixed mode: 300 pixels hold three copies of 100.
    item->repeatCount = 3;
    for (const int copy : {0, 100, 200}) {
        QCOMPARE(colourAt(copy + 25), QColor(Qt::red));
        QCOMPARE(colourAt(copy + 75), QColor(Qt::blue));
    }
    item->repeatCount = 0; // paints as one copy
    QCOMPARE(colourAt(100), QColor(Qt::red));
    QCOMPARE(colourAt(200), QColor(Qt::blue));
    item->repeatCount = 301; // nothing is left of a copy
    QCOMPARE(colourAt(100), QColor(Qt::darkGreen));

    // Speed mode: copies of 94 by 47, as the picture's own shape has it.
    item->speedValue = 10;
    for (const int copy : {0, 94, 188}) {
        QCOMPARE(colourAt(copy + 20), QColor(Qt::red));
        QCOMPARE(colourAt(copy + 70), QColor(Qt::blue));
    }

    // The outline lies around the item, all but its right side, and a wide one reaches in.
    QCOMPARE(painted(item, item->rect()).pixelColor(298, 20), QColor(Qt::black));
    QCOMPARE(painted(item, item->rect()).pixelColor(297, 20), QColor(Qt::red));
    QCOMPARE(painted(item, item->rect()).pixelColor(20, 0), QColor(Qt::red));
    item->selected = 1;
    QCOMPARE(painted(item, item->rect()).pixelColor(150, 1), QColor(240, 240, 250));
    QCOMPARE(painted(item, item->rect()).pixelColor(1, 20), QColor(240, 240, 250));
    QCOMPARE(painted(item, item->rect()).pixelColor(296, 20), QColor(240, 240, 250));
    item->thumbnail = QPixmap();
    QCOMPARE(colourAt(150), QColor(Qt::darkGreen));
}

void TestTrack::aDayLongItemPaintsWhatIsSeen()
{
    // 86400 seconds at the closest zoom: one copy would be 34 million pixels wide.
    msPerPixel = 2.5F;
    TimelineItem *item = add(0, 86399999);
    QPixmap halves = picture(170, Qt::red);
    QPainter(&halves).fillRect(85, 0, 85, 85, Qt::blue);
    item->thumbnail = halves;
    const int middle = item->width() / 2;
    const QImage seen = painted(item, QRect(middle - 300, 0, 600, 45));
    QCOMPARE(seen.pixelColor(298, 20), QColor(Qt::red));
    QCOMPARE(seen.pixelColor(301, 20), QColor(Qt::blue));
    QCOMPARE(seen.pixelColor(0, 20), QColor(Qt::red));
    QCOMPARE(seen.pixelColor(599, 20), QColor(Qt::blue));
    const QImage end = painted(item, QRect(item->width() - 9, 0, 9, 45));
    QCOMPARE(end.pixelColor(6, 20), QColor(Qt::blue));
    QCOMPARE(end.pixelColor(7, 20), QColor(Qt::black));
    const glow::ItemTexture texture = glow::itemTexture(*item, item->size(), middle, middle + 599);
    QCOMPARE(texture.picture.size(), QSize(600, 47));

    // A wide copy shows what scaling the whole picture would show.
    QImage gradient(256, 85, QImage::Format_RGB32);
    for (int x = 0; x < gradient.width(); ++x) {
        for (int y = 0; y < gradient.height(); ++y) {
            gradient.setPixelColor(x, y, QColor(x, y, 0));
        }
    }
    item->thumbnail = QPixmap::fromImage(gradient);
    item->repeatCount = 2;
    const QImage whole = item->thumbnail.scaled(2048, 47, Qt::IgnoreAspectRatio, Qt::FastTransformation).toImage();
    const QImage part = glow::itemTexture(*item, QSize(4096, 45), 1500, 2600).picture.toImage();
    for (int x = 0; x < part.width(); x += 3) {
        const QColor expected = whole.pixelColor((1500 + x) % 2048, 20);
        QVERIFY(qAbs(part.pixelColor(x, 20).red() - expected.red()) <= 1);
        QVERIFY(qAbs(part.pixelColor(x, 20).green() - expected.green()) <= 1);
    }
}

void TestTrack::rulerPaintsInPartsWhatItPaintsWhole_data()
{
    QTest::addColumn<int>("slider");
    for (const int slider : {40, 67, 80, 100, 113, 160}) {
        QTest::addRow("%d", slider) << slider;
    }
}

void TestTrack::rulerPaintsInPartsWhatItPaintsWhole()
{
    QFETCH(const int, slider);
    msPerPixel = glow::msPerPixelOfSlider(slider);
    ruler->setFixedWidth(5000);
    ruler->hoverPos = QPoint(1234, 20);
    delete track;
    ruler->indicator->hide();

    PlainRuler plain;
    plain.hoverX = ruler->hoverPos.x();
    plain.resize(5000, 60);
    const QImage whole = painted(&plain, plain.rect());
    QVERIFY(painted(ruler, QRect(0, 0, 5000, 60)) == whole);
    for (const QRect part :
         {QRect(4000, 0, 1, 60), QRect(1230, 10, 9, 15), QRect(777, 0, 333, 60), QRect(4990, 0, 10, 60)}) {
        QVERIFY(painted(ruler, part) == whole.copy(part));
    }
}

void TestTrack::playHeadTellsNewPixelsOnly()
{
    Indicator *head = ruler->indicator;
    QCOMPARE(head->geometry(), QRect(0, 17, 1, 200));
    QSignalSpy moved(head, &Indicator::moved);
    head->setIndicatorTime(QTime(0, 0, 0, 4), false);
    QVERIFY(moved.isEmpty());
    QCOMPARE(head->indicatorTime, QTime(0, 0, 0, 4));
    head->setIndicatorTime(QTime(0, 0, 0, 5), false);
    QCOMPARE(moved.takeFirst(), (QVariantList{1, false}));
    head->setIndicatorX(1, true);
    QVERIFY(moved.isEmpty());
    QCOMPARE(head->indicatorTime, QTime(0, 0, 0, 10));
    msPerPixel = 6.4F;
    head->setIndicatorX(4, true);
    QCOMPARE(moved.takeFirst(), (QVariantList{4, true}));
    QCOMPARE(head->indicatorTime, QTime(0, 0, 0, 25));
    head->setIndicatorTime(QTime(), false);
    QCOMPARE(head->x(), 0);

    // Play-head and shade stay in front of what the ruler gets later.
    const QObjectList &stack = ruler->children();
    QCOMPARE(stack.last(), ruler->startShade);
    QCOMPARE(stack.at(stack.size() - 2), head);
}

void TestTrack::startMarkHoldsItsPixel()
{
    QVERIFY(ruler->startShade->testAttribute(Qt::WA_TransparentForMouseEvents));
    ruler->indicator->setIndicatorX(120, false);
    ruler->on_setStart_clicked();
    QCOMPARE(ruler->startMarkX, 120);
    QCOMPARE(ruler->startShade->geometry(), QRect(0, 0, 120, 200));
    QVERIFY(!ruler->startShade->isHidden());
    msPerPixel = 5.0F;
    QCOMPARE(ruler->startMarkX, 120);
    ruler->on_resetStart_clicked();
    QCOMPARE(ruler->startMarkX, 0);
    QVERIFY(ruler->startShade->isHidden());
}

void TestTrack::wheelScrollsAndZooms()
{
    ScrollArea area;
    auto *content = new QWidget;
    content->setFixedSize(3000, 50);
    area.setWidget(content);
    area.resize(300, 100);
    area.show();
    area.horizontalScrollBar()->setValue(1000);
    QSignalSpy zoomed(&area, &ScrollArea::scrolled_with_ctl);
    const auto turn = [&area](int delta) {
        QWheelEvent wheel(QPointF(5, 5), area.mapToGlobal(QPoint(5, 5)), QPoint(), QPoint(0, delta), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(area.viewport(), &wheel);
    };
    turn(120);
    QCOMPARE(area.horizontalScrollBar()->value(), 960);
    turn(-121);
    QCOMPARE(area.horizontalScrollBar()->value(), 1000);

    QTest::keyPress(&area, Qt::Key_Control);
    QCOMPARE(area.heldKey, int(Qt::Key_Control));
    turn(-120);
    turn(29);
    QCOMPARE(zoomed.takeFirst(), QVariantList{-4});
    QCOMPARE(zoomed.takeFirst(), QVariantList{0});
    QCOMPARE(area.horizontalScrollBar()->value(), 1000);
    QTest::keyPress(&area, Qt::Key_A, Qt::ControlModifier); // the last key counts, not the modifier
    turn(120);
    QVERIFY(zoomed.isEmpty());
    QTest::keyRelease(&area, Qt::Key_A);
    QCOMPARE(area.heldKey, 0);

    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Delete}) {
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(&area, &press);
        QVERIFY(!press.isAccepted());
        QCOMPARE(area.heldKey, 0);
    }
}

void TestTrack::smallWidgets()
{
    MySlider slider;
    slider.setRange(40, 160);
    slider.setValue(80);
    QTest::mouseDClick(&slider, Qt::LeftButton);
    QCOMPARE(slider.value(), 100);

    MyButton button;
    QSignalSpy hovered(&button, &MyButton::hovered);
    QEnterEvent enter(QPointF(1, 1), QPointF(1, 1), QPointF(1, 1));
    QApplication::sendEvent(&button, &enter);
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&button, &leave);
    QCOMPARE(hovered.takeFirst(), QVariantList{true});
    QCOMPARE(hovered.takeFirst(), QVariantList{false});

    myMenu menu;
    QAction *action = menu.addAction(QStringLiteral("a"));
    action->setToolTip(QStringLiteral("tells"));
    menu.popup(QPoint(300, 200));
    menu.setActiveAction(action);
    QHelpEvent help(QEvent::ToolTip, QPoint(5, 5), QPoint(305, 209));
    QApplication::sendEvent(&menu, &help);
    QCOMPARE(QToolTip::text(), QStringLiteral("tells"));
    menu.hide();
    QTRY_VERIFY(!QToolTip::isVisible());
}

QTEST_MAIN(TestTrack)
#include "test_track.moc"
