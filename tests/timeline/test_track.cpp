// Tracks, patterns, ruler and the small widgets by themselves, without the window around them.
#include "show/draw/itemtexture.h"
#include "show/model/propvalues.h"
#include "show/model/timescale.h"
#include "timeline/indicator.h"
#include "timeline/mymenu.h"
#include "timeline/timeline.h"
#include "timeline/timelineheaders.h"
#include "timeline/timelineitem.h"

#include <QApplication>
#include <QPainter>
#include <QRandomGenerator>
#include <QToolTip>
#include <QtTest>

namespace {

QPixmap redAndBlue()
{
    QPixmap halves(170, 85);
    halves.fill(Qt::red);
    QPainter(&halves).fillRect(85, 0, 85, 85, Qt::blue);
    return halves;
}

glow::PatternRecord record(int startMs, int endMs)
{
    glow::PatternRecord made;
    made.thumbnail = redAndBlue();
    made.startTime = glow::timeOf(startMs);
    made.endTime = glow::timeOf(endMs);
    made.repeatCount = 1;
    made.patternKind = glow::ColourPattern;
    made.settingsText = "1?#ffffff";
    return made;
}

// A part of a widget as it paints itself, whatever the widget's width.
QImage painted(QWidget *widget, const QRect &part)
{
    QImage image(part.size(), QImage::Format_RGB32);
    image.fill(Qt::darkGreen);
    widget->render(&image, QPoint(), part, QWidget::RenderFlags());
    return image;
}

// What an item shows at some x: red, blue, its black outline, the light one of a selected item, "-" where it paints
// nothing.
QString shown(TimelineItem *item, const QVector<int> &places, int y = 20)
{
    const QMap<QRgb, QString> letters{
        {0xffff0000, "r"}, {0xff0000ff, "b"}, {0xff000000, "k"}, {0xfff0f0fa, "l"}, {0xff008000, "-"}};
    QString text;
    for (const int x : places)
        text += letters.value(painted(item, QRect(x, y, 1, 1)).pixel(0, 0), "?");
    return text;
}

// The ruler by its plain rule: tick after tick from 0 on, whatever is seen of it.
class PlainRuler : public QWidget
{
protected:
    void paintEvent(QPaintEvent *e) override
    {
        Q_UNUSED(e)
        QPainter painter(this);
        const float zoom = msPerPixel;
        const int unit = zoom > 23.0F ? 50 : 10;
        int i = -1;
        float next = 0;
        while (next < float(width())) {
            const float x = next;
            next += tickMs / zoom;
            ++i;
            const int grey = i % (10 * unit) == 0 ? 150 : i % unit == 0 ? 120 : 100;
            painter.setPen(QColor(grey, grey, grey));
            if (grey > 100 || zoom <= 5.0F)
                painter.drawLine(int(x), grey == 150 ? 17 : grey == 120 ? 21 : 25, int(x), 30);
            const QTime time = QTime(0, 0).addMSecs(i * 10);
            if (i % (zoom > 23.0F ? 500 : zoom > 10.0F ? 200 : 100) == 0) {
                painter.setPen(Qt::white);
                painter.drawText(int(x) - 16, 15, time.toString("mm:ss"));
            } else if (i % 20 == 0 && zoom <= 2.5F) {
                painter.setPen(QColor(180, 180, 180));
                painter.drawText(int(x) - 15, 15, time.toString(".zzz"));
            }
        }
        painter.setPen(QColor(200, 255, 255));
        painter.drawLine(1234, 17, 1234, 30);
    }
};

} // namespace

class TestTrack : public QObject
{
    Q_OBJECT

private slots:
    void init()
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
    }

    void blobFollowsEveryChange()
    {
        // The same picture with a comment chunk (its checksum is of no interest): equal as a pattern, other and more
        // bytes.
        const QByteArray fresh = glow::writePattern(record(1000, 2000));
        QByteArray blob = fresh;
        const QByteArray chunk = QByteArray::fromHex("000000047445587441004242") + QByteArray(4, '\0');
        blob.insert(blob.indexOf("IHDR") + 4 + 13 + 4, chunk);
        TimelineItem *item = add(0, 10);
        item->loadData(blob);
        QCOMPARE(item->itemData, fresh + blob.right(chunk.size())); // written over the old bytes, whose tail stays
        QCOMPARE(item->itemId, QString("0x%1").arg(quintptr(item), 16, 16, QLatin1Char('0')));
        QCOMPARE(item->toolTip(), QString("長度: 00:01.000\n開始時間: 00:01.000\n結束時間: 00:02.000"));

        item = add(1000, 2000);
        item->settingsText = "1?#a0b0c0";
        item->setTimes(glow::timeOf(0), glow::timeOf(70000));
        QCOMPARE(item->itemData, glow::writePattern(*item));
        QCOMPARE(glow::readPattern(item->itemData).endTime, QTime(0, 1, 10));
        // A picture painted upon is encoded anew, and so is the present one over that of a blob from outside.
        QPainter(&item->thumbnail).fillRect(0, 0, 5, 5, Qt::black);
        item->updateData();
        QVERIFY(glow::readPattern(item->itemData).thumbnail.toImage() == item->thumbnail.toImage());
        glow::PatternRecord other = *item;
        other.thumbnail.fill(Qt::blue);
        item->itemData = glow::writePattern(other);
        item->setTimes(glow::timeOf(10), glow::timeOf(20));
        QVERIFY(item->itemData.startsWith(glow::writePattern(*item)));
    }

    void foreignBlobsMakeCalmItems()
    {
        QRandomGenerator random(11);
        const QByteArray whole = glow::writePattern(record(1000, 9000));
        for (int round = 0; round < 300; ++round) {
            // Cut short; or times and counts, behind the picture, beyond what a clock or a user makes; or noise.
            QByteArray blob = round % 3 != 0 ? whole : whole.left(int(random.bounded(quint32(whole.size()))));
            const int last = round % 3 == 0 ? 0 : round % 3 == 1 ? blob.size() - 18 : blob.size();
            for (int i = round % 3 == 1 ? last - 12 - 11 - 8 : 0; i < last; ++i)
                blob[i] = char(random.bounded(256U));
            auto *item = new TimelineItem(blob, track);
            track->addTimelineItem(item);
            item->speedValue = round % 2;
            painted(item, QRect(0, 0, 40, 45));
            track->on_itemDragEnd(blob, item);
            track->itemAt(5);
            item->setTimes(item->startTime, item->endTime);
        }
        const TimelineItem empty(QByteArray(), track);
        QVERIFY(empty.thumbnail.isNull() && glow::msOf(empty.startTime) == 0 && !empty.isHidden());
    }

    void itemStandsByItsTimes()
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

    void leavingTheTrackCutsAllTies()
    {
        TimelineItem *item = add(1000, 2000);
        QSignalSpy clicked(track, &Timeline::itemClicked);
        QSignalSpy others(item, &TimelineItem::itemClicked);
        item->on_itemDelete_clicked();
        QVERIFY(track->items.isEmpty());
        QVERIFY(item->isHidden() && item->parentWidget() == nullptr);
        emit item->itemClicked(item, false);
        msPerPixel = 5.0F;
        emit track->timelineMultiUpdated();
        QVERIFY(clicked.isEmpty() && others.isEmpty() && item->x() == 100);

        // Back on a track it is tied once.
        track->addTimelineItem(item);
        emit item->itemClicked(item, false);
        QCOMPARE(clicked.size(), 1);

        // What keeps things for a widget by its address, as the style does, has to hear of its end.
        QSignalSpy ended(item, &QObject::destroyed);
        item->on_itemDelete_clicked();
        delete item;
        QCOMPARE(ended.size(), 1);
    }

    void sortingActsOnTheWidgets()
    {
        TimelineItem *longer = add(0, 1000);
        TimelineItem *displaced = add(400, 600);
        TimelineItem *covered = add(2000, 2500);
        TimelineItem *covering = add(2000, 3000);
        TimelineItem *shorter = add(0, 400);
        track->sortItems();
        QCOMPARE(listed(), QString("0-400 400-1000 2000-3000"));
        QCOMPARE(track->items, (QList<TimelineItem *>{shorter, longer, covering}));
        QVERIFY(covered->isHidden() && covered->parentWidget() == nullptr);
        // The displaced pattern is on no list and yet stays on screen.
        QVERIFY(!displaced->isHidden() && displaced->parentWidget() == track);
        delete covered;
    }

    void splitPiecesKeepTheSettings()
    {
        TimelineItem *longer = add(0, 10000, "1?#123456");
        longer->repeatCount = 9;
        longer->updateData();
        TimelineItem *item = add(4000, 5000);
        QSignalSpy ended(track, &Timeline::itemDragEnd);
        track->on_itemDragEnd(item->itemData, item);
        QCOMPARE(listed(), QString("0-4000 4000-5000 5000-10000"));
        const TimelineItem *rest = track->items.last();
        QCOMPARE(rest->settingsText, QString("1?#123456"));
        QCOMPARE(rest->repeatCount, 9);
        QVERIFY(rest->itemId != longer->itemId);
        QCOMPARE(rest->geometry(), QRect(500, 5, 500, 45));
        QVERIFY(ended.isEmpty()); // no source widget, no signal

        // In speed mode each piece counts for itself: 72 columns at 36 LEDs, 10 a millisecond and a hundredth, doubled
        // above 1500 columns a second.
        longer->speedValue = 10;
        frameRate = 1501.0F;
        track->deleteTimelineItem(track->items.last());
        longer->setTimes(glow::timeOf(0), glow::timeOf(14400));
        item->setTimes(glow::timeOf(3600), glow::timeOf(7200));
        track->on_itemDragEnd(item->itemData, item, track);
        QCOMPARE(listed(), QString("0-3600 3600-7200 7200-14400"));
        QCOMPARE(longer->repeatCount, 100);
        QCOMPARE(track->items.last()->repeatCount, 200);
        QCOMPARE(ended.size(), 1);
        QVERIFY(ended.at(0).at(2).value<Timeline *>() == nullptr);
    }

    void randomPlacementsKeepTheTrackWhole()
    {
        // Seen from outside, the moved pattern takes its span from every other one, whose parts before and behind keep
        // their settings. Tracks start free of overlap and stay so.
        QRandomGenerator random(21);
        const auto number = [&random](int below) { return int(random.bounded(quint32(below))); };
        QMap<int, QPair<int, QString>> model; // start to end and settings
        for (int round = 0; round < 1000; ++round) {
            const int start = number(300) * 100;
            TimelineItem *item = nullptr;
            if (track->items.size() > 8) {
                track->items.append(track->items.takeAt(number(track->items.size())));
                item = track->items.last();
                model.remove(glow::msOf(item->startTime));
                item->setTimes(glow::timeOf(start), glow::timeOf(start + glow::durationMs(*item)));
            } else {
                item = add(start, start + 100 + number(50) * 100, QString("1?#%1").arg(100000 + round));
            }
            const int end = glow::msOf(item->endTime);
            QMap<int, QPair<int, QString>> expected{{start, {end, item->settingsText}}};
            for (auto other = model.constBegin(); other != model.constEnd(); ++other) {
                if (other.key() < qMin(other->first, start))
                    expected.insert(other.key(), {qMin(other->first, start), other->second});
                if (qMax(other.key(), end) < other->first)
                    expected.insert(qMax(other.key(), end), *other);
            }
            model = expected;

            track->on_itemDragEnd(item->itemData, item);
            QMap<int, QPair<int, QString>> present;
            for (const TimelineItem *one : qAsConst(track->items)) {
                present.insert(glow::msOf(one->startTime), {glow::msOf(one->endTime), one->settingsText});
                QVERIFY(one->parentWidget() == track && !one->isHidden());
                QVERIFY(round % 10 > 0 || one->itemData.startsWith(glow::writePattern(*one))); // encoding is slow
            }
            QVERIFY2(present == model, qPrintable(QString("round %1").arg(round)));
            QCOMPARE(track->items.size(), model.size());
            QCOMPARE(track->findChildren<TimelineItem *>().size(), model.size());
        }
    }

    void bandIsNoItem()
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

        // The topmost one counts, and nothing outside the track.
        TimelineItem *above = add(1500, 2500);
        QCOMPARE(track->itemAt(160), above);
        item->raise();
        QCOMPARE(track->itemAt(160), item);
        QCOMPARE(track->itemUnderHead(99), item);
        QVERIFY(track->itemUnderHead(98) == nullptr);
        add(299000, 310000);
        QVERIFY(track->itemAt(29950) != nullptr && track->itemAt(30000) == nullptr);
    }

    void copiesFillTheItem()
    {
        TimelineItem *item = add(0, 3000); // 300 pixels
        item->repeatCount = 3;
        QCOMPARE(shown(item, {25, 75, 125, 175, 225, 275, 297, 298}), QString("rbrbrbbk"));
        item->repeatCount = 0; // paints as one copy
        QCOMPARE(shown(item, {100, 200}), QString("rb"));
        item->repeatCount = 301; // nothing is left of a copy
        QCOMPARE(shown(item, {100}), QString("-"));
        item->speedValue = 10; // copies of 94 by 47, as the picture's own shape has it
        QCOMPARE(shown(item, {20, 70, 114, 164, 208, 258}), QString("rbrbrb"));

        // The outline lies around the item, all but its right side, and the light one reaches in.
        QCOMPARE(shown(item, {20}, 0), QString("r"));
        item->selected = 1;
        QCOMPARE(shown(item, {150}, 1), QString("l"));
        QCOMPARE(shown(item, {1, 20, 296}), QString("lrl"));
        item->thumbnail = QPixmap();
        QCOMPARE(shown(item, {150}), QString("-"));
    }

    void aDayLongItemPaintsWhatIsSeen()
    {
        // 86400 seconds at the closest zoom: one copy would be 34 million pixels wide.
        msPerPixel = 2.5F;
        TimelineItem *item = add(0, 86399999);
        const int middle = item->width() / 2;
        const int end = item->width();
        QCOMPARE(shown(item, {middle - 300, middle - 2, middle + 1, end - 3, end - 2}), QString("rrbbk"));
        QCOMPARE(glow::itemTexture(*item, item->size(), middle, middle + 599).picture.size(), QSize(600, 47));

        // A wide copy shows what scaling the whole picture would show.
        QLinearGradient fade(0, 0, 170, 0);
        fade.setColorAt(1, Qt::red);
        QPainter(&item->thumbnail).fillRect(0, 0, 170, 85, fade);
        item->repeatCount = 2;
        const QImage whole = item->thumbnail.scaled(2048, 47, Qt::IgnoreAspectRatio, Qt::FastTransformation).toImage();
        const QImage part = glow::itemTexture(*item, QSize(4096, 45), 1500, 2600).picture.toImage();
        for (int x = 0; x < part.width(); ++x)
            QVERIFY(qAbs(qRed(part.pixel(x, 20)) - qRed(whole.pixel((1500 + x) % 2048, 20))) <= 2);
    }

    void rulerPaintsInPartsWhatItPaintsWhole()
    {
        delete track;
        ruler->indicator->hide();
        ruler->setFixedWidth(5000);
        ruler->hoverPos = QPoint(1234, 20);
        PlainRuler plain;
        plain.resize(5000, 60);
        // At both sides of each zoom where the ruler shows more or less: 23, 10, 5 and 2.5 milliseconds a pixel.
        for (const int slider : {40, 52, 53, 79, 80, 112, 113, 156, 160}) {
            msPerPixel = glow::msPerPixelOfSlider(slider);
            const QImage whole = painted(&plain, plain.rect());
            for (const QRect part : {QRect(0, 0, 5000, 60), QRect(4000, 0, 1, 60), QRect(1230, 10, 9, 15),
                                     QRect(777, 0, 333, 60), QRect(4990, 0, 10, 60)})
                QVERIFY2(painted(ruler, part) == whole.copy(part), qPrintable(QString("zoom %1").arg(slider)));
        }
    }

    void playHeadTellsNewPixelsOnly()
    {
        Indicator *head = ruler->indicator;
        QCOMPARE(head->geometry(), QRect(0, 17, 1, 200));
        QSignalSpy moved(head, &Indicator::moved);
        head->setIndicatorTime(QTime(0, 0, 0, 4), false);
        QVERIFY(moved.isEmpty() && head->indicatorTime == QTime(0, 0, 0, 4));
        head->setIndicatorTime(QTime(0, 0, 0, 5), false);
        QCOMPARE(moved.takeFirst(), (QVariantList{1, false}));
        head->setIndicatorX(1, true);
        QVERIFY(moved.isEmpty() && head->indicatorTime == QTime(0, 0, 0, 10));
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

    void menuShowsTheTipOfItsAction()
    {
        myMenu menu;
        QAction *action = menu.addAction("a");
        action->setToolTip("tells");
        menu.popup(QPoint(300, 200));
        menu.setActiveAction(action);
        QHelpEvent help(QEvent::ToolTip, QPoint(5, 5), QPoint(305, 209));
        QApplication::sendEvent(&menu, &help);
        QCOMPARE(QToolTip::text(), QString("tells"));
        menu.hide();
        QTRY_VERIFY(!QToolTip::isVisible());
    }

private:
    TimelineItem *add(int startMs, int endMs, const QString &settings = "1?#ffffff")
    {
        glow::PatternRecord made = record(startMs, endMs);
        made.settingsText = settings;
        auto *item = new TimelineItem(glow::writePattern(made), track);
        track->addTimelineItem(item);
        return item;
    }

    QString listed() const
    {
        QStringList texts;
        for (const TimelineItem *item : qAsConst(track->items))
            texts << QString("%1-%2").arg(glow::msOf(item->startTime)).arg(glow::msOf(item->endTime));
        return texts.join(' ');
    }

    QScopedPointer<QWidget> host; // a window, so that sizes are real at once
    TimelineHeaders *ruler = nullptr;
    Timeline *track = nullptr;
};

QTEST_MAIN(TestTrack)
#include "test_track.moc"
