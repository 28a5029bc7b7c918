// Tracks, patterns, ruler and the small widgets by themselves, without the window around them.
#include "show/draw/itemtexture.h"
#include "show/model/propvalues.h"
#include "show/model/timescale.h"
#include "support/golden.h"
#include "support/samples.h"
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

// A part of a widget as it paints itself, whatever the widget's width.
QImage partOf(QWidget *widget, const QRect &part)
{
    QImage image(part.size(), QImage::Format_RGB32);
    image.fill(Qt::darkGreen);
    widget->render(&image, QPoint(), part, QWidget::RenderFlags());
    return image;
}

} // namespace

class TestTrack : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        msPerPixel = 10.0F;
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
        // bytes. The old bytes are written over, and their tail stays.
        const QByteArray fresh = patternBlob("1?#ffffff", 1000, 1000);
        const QByteArray chunk = QByteArray::fromHex("000000047445587441004242") + QByteArray(4, '\0');
        TimelineItem *item = add(0, 10);
        item->loadData(QByteArray(fresh).insert(fresh.indexOf("IHDR") + 4 + 13 + 4, chunk));
        QCOMPARE(item->itemData, fresh + fresh.right(chunk.size()));
        QCOMPARE(item->itemId, QString("0x%1").arg(quintptr(item), 16, 16, QLatin1Char('0')));
        QCOMPARE(item->toolTip(), QString("長度: 00:01.000\n開始時間: 00:01.000\n結束時間: 00:02.000"));

        item = add(1000, 2000);
        item->settingsText = "1?#a0b0c0";
        item->setTimes(glow::timeOf(0), glow::timeOf(70000));
        QCOMPARE(item->itemData, glow::writePattern(*item));
        // A picture painted upon is encoded anew, and so is the present one over that of a blob from outside.
        QPainter(&item->thumbnail).fillRect(0, 0, 5, 5, Qt::black);
        item->updateData();
        QVERIFY(glow::readPattern(item->itemData).thumbnail.toImage() == item->thumbnail.toImage());
        glow::PatternRecord other = *item;
        other.thumbnail.fill(Qt::blue);
        item->itemData = glow::writePattern(other);
        item->setTimes(glow::timeOf(10), glow::timeOf(20));
        QVERIFY(item->itemData.startsWith(glow::writePattern(*item)));
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
        QVERIFY(thin->width() == 2 && add(4000, 4000)->width() == 8);
        msPerPixel = 40.0F;
        QCOMPARE(add(5000, 5000)->minimumWidth(), 0);
    }

    void leavingTheTrackCutsAllTies()
    {
        TimelineItem *item = add(1000, 2000);
        QSignalSpy clicked(track, &Timeline::itemClicked);
        QSignalSpy others(item, &TimelineItem::itemClicked);
        QSignalSpy ended(item, &QObject::destroyed);
        item->on_itemDelete_clicked();
        QVERIFY(track->items.isEmpty() && item->isHidden() && item->parentWidget() == nullptr);
        emit item->itemClicked(item, false);
        msPerPixel = 5.0F;
        emit track->timelineMultiUpdated();
        QVERIFY(clicked.isEmpty() && others.isEmpty() && item->x() == 100);
        track->addTimelineItem(item); // back on a track it is tied once
        emit item->itemClicked(item, false);
        QCOMPARE(clicked.size(), 1);
        // What keeps things for a widget by its address, as the style does, has to hear of its end.
        item->on_itemDelete_clicked();
        delete item;
        QCOMPARE(ended.size(), 1);
    }

    void piecesKeepTheSettings()
    {
        TimelineItem *longer = add(0, 10000, "1?#123456");
        longer->repeatCount = 9;
        longer->updateData();
        TimelineItem *item = add(4000, 5000);
        QSignalSpy ended(track, &Timeline::itemDragEnd);
        track->on_itemDragEnd(item->itemData, item);
        QCOMPARE(listed(), QString("0-4000 4000-5000 5000-10000"));
        const TimelineItem *rest = track->items.last();
        QVERIFY(rest->settingsText == "1?#123456" && rest->repeatCount == 9 && rest->itemId != longer->itemId);
        QCOMPARE(rest->geometry(), QRect(500, 5, 500, 45));
        QVERIFY(ended.isEmpty()); // no source widget, no signal

        // In speed mode each piece counts for itself: 72 columns at 36 LEDs, 10 a millisecond and a hundredth, doubled
        // above 1500 columns a second.
        longer->speedValue = 10;
        longer->thumbnail = longer->thumbnail.scaled(170, 85);
        ledCount = 36;
        frameRate = 1501.0F;
        track->deleteTimelineItem(track->items.last());
        longer->setTimes(glow::timeOf(0), glow::timeOf(14400));
        item->setTimes(glow::timeOf(3600), glow::timeOf(7200));
        track->on_itemDragEnd(item->itemData, item, track);
        QCOMPARE(listed(), QString("0-3600 3600-7200 7200-14400"));
        QVERIFY(longer->repeatCount == 100 && track->items.last()->repeatCount == 200);
        QVERIFY(ended.size() == 1 && ended.at(0).at(2).value<Timeline *>() == nullptr);

        // A piece that begins where another pattern begins displaces it: it is on no list and yet stays on screen.
        TimelineItem *displaced = add(20400, 20600);
        add(20000, 21000);
        add(20000, 20400);
        track->sortItems();
        QVERIFY(listed().endsWith("20000-20400 20400-21000") && !displaced->isHidden());
    }

    // Seen from outside, the moved pattern takes its span from every other one, whose parts before and behind keep
    // their settings.
    void randomPlacementsKeepTheTrackWhole()
    {
        QRandomGenerator random(21);
        QVector<QString> model(360); // the settings in each tenth of a second
        const auto lay = [](QVector<QString> &tenths, const TimelineItem &item, const QString &settings) {
            std::fill(tenths.begin() + glow::msOf(item.startTime) / 100,
                      tenths.begin() + glow::msOf(item.endTime) / 100, settings);
        };
        for (int round = 0; round < 400; ++round) {
            const int start = random.bounded(300) * 100;
            TimelineItem *item = nullptr;
            if (track->items.size() > 8) {
                item = track->items.takeAt(random.bounded(track->items.size()));
                track->items.append(item);
                lay(model, *item, {});
                item->setTimes(glow::timeOf(start), glow::timeOf(start + glow::durationMs(*item)));
            } else {
                item = add(start, start + 100 + random.bounded(50) * 100, QString("1?#%1").arg(100000 + round));
            }
            lay(model, *item, item->settingsText);
            track->on_itemDragEnd(item->itemData, item);
            QVector<QString> present(360);
            for (const TimelineItem *one : qAsConst(track->items))
                lay(present, *one, one->settingsText);
            QVERIFY2(present == model, qPrintable(QString("round %1").arg(round)));
            QCOMPARE(track->findChildren<TimelineItem *>().size(), track->items.size());
        }
    }

    void bandIsNoItem()
    {
        TimelineItem *item = add(1000, 2000);
        track->showReadyBand(true, 1509, 2009);
        QVERIFY(!track->readyBand->isHidden());
        QCOMPARE(track->readyBand->geometry(), QRect(150, 0, 200, 55));
        track->readyBand->raise();
        QVERIFY(track->itemAt(160) == item && track->itemAt(250) == nullptr);
        track->showReadyBand(true, 0, 100); // a second enter without a leave
        QVERIFY(track->readyBand->isHidden());

        // The topmost one counts, and nothing outside the track.
        QCOMPARE(track->itemAt(160), add(1500, 2500));
        item->raise();
        QCOMPARE(track->itemAt(160), item);
        QVERIFY(track->itemUnderHead(99) == item && track->itemUnderHead(98) == nullptr);
        add(299000, 310000);
        QVERIFY(track->itemAt(29950) != nullptr && track->itemAt(30000) == nullptr);
    }

    void itemsLookAsEver()
    {
        TimelineItem *item = add(0, 3000); // 300 pixels
        item->thumbnail = QPixmap(170, 85);
        item->thumbnail.fill(Qt::red);
        QPainter(&item->thumbnail).fillRect(85, 0, 85, 85, Qt::blue);
        QImage sheet(300, 8 * 50, QImage::Format_RGB32);
        sheet.fill(Qt::black);
        QPainter painter(&sheet);
        const auto keep = [&](int x) {
            painter.drawImage(0, 0, partOf(item, QRect(x, 0, 300, 45)));
            painter.translate(0, 50);
        };
        for (const auto &[repeats, speed, selected] : {std::tuple(3, 0, 0), {0, 0, 1}, {301, 0, 0}, {2, 10, 1}}) {
            item->repeatCount = repeats;
            item->speedValue = speed;
            item->selected = selected;
            keep(0);
        }
        // 86400 seconds at the closest zoom: one copy would be 34 million pixels wide.
        msPerPixel = 2.5F;
        item->setTimes(glow::timeOf(0), glow::timeOf(86399999));
        item->repeatCount = 1;
        item->speedValue = 0;
        for (const int x : {0, item->width() / 2 - 100, item->width() - 300})
            keep(x);
        QCOMPARE(glow::itemTexture(*item, item->size(), 9000, 9599).picture.size(), QSize(600, 47));
        // A wide copy shows what scaling the whole picture would show.
        QPainter(&item->thumbnail).fillRect(0, 0, 170, 85, QGradient(QGradient::JuicyPeach));
        item->repeatCount = 2;
        const QImage whole = item->thumbnail.scaled(2048, 47, Qt::IgnoreAspectRatio, Qt::FastTransformation).toImage();
        const QImage part = glow::itemTexture(*item, QSize(4096, 45), 1500, 2047).picture.toImage();
        for (int x = 0; x < part.width(); ++x)
            QVERIFY(distance(part.pixel(x, 20), whole.pixel(1500 + x, 20)) <= 2);
        item->thumbnail = QPixmap();
        keep(0);
        QCOMPARE(unlikeGolden(sheet, "items.png"), QString());
    }

    // In parts it paints what it paints whole, and its ticks stand as they are kept. The zooms lie at both sides of 23,
    // 10, 5 and 2.5 milliseconds a pixel, where it shows more or less.
    void rulerLooksAsEver()
    {
        delete track;
        ruler->indicator->hide();
        ruler->hoverPos = QPoint(1234, 20);
        QImage sheet(1300, 9 * 16, QImage::Format_RGB32);
        QPainter painter(&sheet);
        for (const int slider : {40, 52, 53, 79, 80, 112, 113, 156, 160}) {
            msPerPixel = glow::msPerPixelOfSlider(slider);
            const QImage whole = partOf(ruler, QRect(0, 0, 5000, 60));
            for (const QRect &part : {QRect(4000, 0, 1, 60), QRect(1230, 10, 9, 15), QRect(777, 0, 333, 60)})
                QVERIFY2(partOf(ruler, part) == whole.copy(part), qPrintable(QString("zoom %1").arg(slider)));
            painter.drawImage(0, 0, whole, 0, 16, 1300, 16);
            painter.translate(0, 16);
        }
        QCOMPARE(unlikeGolden(sheet, "ruler.png"), QString());

        // The labels, in the font that there is: fractions stand where there are no seconds, at the closest zoom alone.
        for (const auto &[x, text, grey] : {std::tuple(80, ".200", 180), {400, "00:01", 255}, {4000, "00:10", 255}}) {
            QImage label(60, 16, QImage::Format_RGB32);
            label.fill(Qt::darkGreen);
            QPainter writer(&label);
            QFont font = ruler->font();
            font.setPixelSize(QFontInfo(font).pixelSize()); // the screen's dots, not the picture's
            writer.setFont(font);
            writer.setPen(QColor(grey, grey, grey));
            writer.drawText(grey == 255 ? 4 : 5, 15, text);
            QCOMPARE(partOf(ruler, QRect(x - 20, 0, 60, 16)), label);
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
        head->setIndicatorX(1, true);
        QVERIFY(moved.size() == 1 && head->indicatorTime == QTime(0, 0, 0, 10));
        msPerPixel = 6.4F;
        head->setIndicatorX(4, true);
        QVERIFY(moved.value(0) == (QVariantList{1, false}) && moved.value(1) == (QVariantList{4, true}));
        QCOMPARE(head->indicatorTime, QTime(0, 0, 0, 25));
        head->setIndicatorTime(QTime(), false);
        QCOMPARE(head->x(), 0);
        // Play-head and shade stay in front of what the ruler gets later.
        const QObjectList &stack = ruler->children();
        QVERIFY(stack.last() == ruler->startShade && stack.at(stack.size() - 2) == head);
    }

    void menuShowsTheTipOfItsAction()
    {
        myMenu menu;
        menu.addAction("a")->setToolTip("tells");
        menu.popup(QPoint(300, 200));
        menu.setActiveAction(menu.actions().first());
        QHelpEvent help(QEvent::ToolTip, QPoint(5, 5), QPoint(305, 209));
        QApplication::sendEvent(&menu, &help);
        QCOMPARE(QToolTip::text(), QString("tells"));
        menu.hide();
        QTRY_VERIFY(!QToolTip::isVisible());
    }

private:
    TimelineItem *add(int startMs, int endMs, const QString &settings = "1?#ffffff")
    {
        auto *item = new TimelineItem(patternBlob(settings, startMs, endMs - startMs), track);
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
