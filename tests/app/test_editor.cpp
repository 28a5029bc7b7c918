// The pattern panel on the real window: fields that keep each other in step, patterns written and read back.
#include "app/mainwindow.h"
#include "app/propvalues.h"
#include "preview/mygl.h"
#include "support/dialogdriver.h"
#include "support/testenv.h"
#include "support/windowcheck.h"
#include "timeline/indicator.h"
#include "timeline/timeline.h"
#include "timeline/timelineheaders.h"
#include "timeline/timelineitem.h"
#include "timeline/timescale.h"
#include "ui_mainwindow.h"

#include <QImage>
#include <QtTest>

class TestEditor : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void startsInNewMode();
    void startMovesTheEnd();
    void endSetsTheDuration();
    void endBeforeStartSnapsToATenth();
    void durationRoundsTheEnd();
    void speedDrivesTheCount();
    void typingACountFixesIt();
    void addTwiceFollowsOn();
    void addWithoutPictureDoesNothing();
    void colourPatternHoldsItsSettings();
    void everyKindComesBack_data();
    void everyKindComesBack();
    void editingKeepsToTheItem();
    void outdatedSettingsAreRefused();
    void foreignKindChangesNothing();
    void foreignColourModeIsLeftAlone();
    void tabWithoutPictureDisablesAdding();
    void hoveringShowsTheBand();
    void ledsRenderAnew();

private:
    void addColour(int startMs, int endMs);
    TimelineItem *lastItem() const { return window->currentTimeline->items.last(); }

    QScopedPointer<TestEnv> env;
    QScopedPointer<MainWindow> window;
    Ui::MainWindow *ui = nullptr;
};

void TestEditor::init()
{
    env.reset(new TestEnv);
    msPerPixel = 10.0F;
    window.reset(new MainWindow);
    ui = window->ui;
    window->show();
}

void TestEditor::cleanup()
{
    window.reset();
    env.reset();
}

void TestEditor::addColour(int startMs, int endMs)
{
    ui->NEW_radio->setChecked(true);
    ui->Mode_Pic->setCurrentIndex(1);
    ui->Mode_t1->setTime(glow::timeOf(startMs));
    ui->Mode_t2->setTime(glow::timeOf(endMs));
    window->on_Add_Button_clicked();
}

void TestEditor::startsInNewMode()
{
    QVERIFY(ui->NEW_radio->isChecked());
    QVERIFY(!ui->EDIT_radio->isEnabled());
    QVERIFY(!ui->Add_Button->isEnabled());
    QCOMPARE(ui->Mode_Pic->currentIndex(), 0);
    QCOMPARE(ui->Mode_t2->time(), QTime(0, 0, 5));
    QVERIFY(ui->radio_speed_slide->isChecked());
    QVERIFY(!ui->Mode_loop->isEnabled());
    QCOMPARE(ledCount, qint16(70));
    QCOMPARE(frameRate, 2100.0F);
    QCOMPARE(ui->gadget_name->text(), QStringLiteral("Brevon Max-70LED"));
    QVERIFY(!ui->Leds->isEnabled());
    QCOMPARE(whatIsWrong(*window), QString());
}

void TestEditor::startMovesTheEnd()
{
    ui->Mode_t1->setTime(QTime(0, 1, 2, 3));
    QCOMPARE(ui->Mode_t2->time(), QTime(0, 1, 7, 3));
    QCOMPARE(ui->Mode_last->value(), 5.0);
}

void TestEditor::endSetsTheDuration()
{
    ui->Mode_t1->setTime(QTime(0, 0, 1));
    ui->Mode_t2->setTime(QTime(0, 0, 3, 250));
    QCOMPARE(ui->Mode_last->value(), 2.25);
    QCOMPARE(ui->Mode_t1->time(), QTime(0, 0, 1));
}

void TestEditor::endBeforeStartSnapsToATenth()
{
    ui->Mode_t1->setTime(QTime(0, 0, 10));
    ui->Mode_t2->setTime(QTime(0, 0, 4));
    QCOMPARE(ui->Mode_last->value(), 0.1);
    QCOMPARE(ui->Mode_t2->time(), QTime(0, 0, 10, 100));
}

void TestEditor::durationRoundsTheEnd()
{
    ui->Mode_t1->setTime(QTime(0, 0, 2));
    // 1.001 * 1000 lies just below 1001 in double precision.
    ui->Mode_last->setValue(1.001);
    QCOMPARE(ui->Mode_t2->time(), QTime(0, 0, 3, 1));
}

void TestEditor::speedDrivesTheCount()
{
    window->patternWidth = 500;
    ui->Speed_slide->setValue(12);
    ui->Mode_last->setValue(2.0);
    // 2 * 12 * 1500 / 5000 = 7.2
    QCOMPARE(ui->suggest->value(), 7);
    QCOMPARE(ui->Mode_loop->value(), 7);
    ui->radio_speed_m->setChecked(true);
    QVERIFY(ui->Mode_loop->isEnabled());
    ui->Speed_slide->setValue(2);
    QCOMPARE(ui->suggest->value(), 1);
    QCOMPARE(ui->Mode_loop->value(), 7);
    ui->radio_speed_slide->setChecked(true);
    QCOMPARE(ui->Mode_loop->value(), 1);
    QTest::mouseDClick(ui->Speed_slide, Qt::LeftButton);
    QCOMPARE(ui->Speed_slide->value(), 10);
}

void TestEditor::typingACountFixesIt()
{
    ui->Mode_loop->setEnabled(true);
    // Without a window manager no window becomes active by itself.
    QApplication::setActiveWindow(window.data());
    ui->Mode_loop->setValue(4);
    QVERIFY(ui->radio_speed_slide->isChecked());
    ui->Mode_loop->setFocus();
    QVERIFY(ui->Mode_loop->hasFocus());
    QTest::keyClick(ui->Mode_loop, Qt::Key_Up);
    QCOMPARE(ui->Mode_loop->value(), 5);
    QVERIFY(ui->radio_speed_m->isChecked());
}

void TestEditor::addTwiceFollowsOn()
{
    ui->Mode_Pic->setCurrentIndex(1);
    ui->Mode_t2->setTime(QTime(0, 0, 1, 500));
    window->on_Add_Button_clicked();
    window->on_Add_Button_clicked();
    const auto items = window->currentTimeline->items;
    QCOMPARE(items.size(), 2);
    QCOMPARE(items.at(0)->startTime, QTime(0, 0));
    QCOMPARE(items.at(0)->endTime, QTime(0, 0, 1, 500));
    QCOMPARE(items.at(1)->startTime, QTime(0, 0, 1, 500));
    QCOMPARE(items.at(1)->endTime, QTime(0, 0, 3));
    QCOMPARE(ui->timeline_headers->indicator->indicatorTime, QTime(0, 0, 3));
    QVERIFY(ui->NEW_radio->isChecked());
    QVERIFY(ui->Saved_status->text().endsWith(QStringLiteral("2")));
    QCOMPARE(window->history.index, 2);
    QVERIFY(!ui->Mode_loop->signalsBlocked());
}

void TestEditor::addWithoutPictureDoesNothing()
{
    window->on_Add_Button_clicked();
    QVERIFY(window->currentTimeline->items.isEmpty());
    QCOMPARE(window->history.index, 0);
}

void TestEditor::colourPatternHoldsItsSettings()
{
    ui->Mode_Pic->setCurrentIndex(1);
    ui->Color_R->setValue(200);
    ui->Color_G->setValue(100);
    ui->Color_B->setValue(0);
    addColour(0, 1000);
    const TimelineItem *item = lastItem();
    QCOMPARE(item->patternKind, 1);
    QCOMPARE(item->solidColor, QColor(200, 100, 0));
    QCOMPARE(item->settingsText, QStringLiteral("1?#c86400"));
    QCOMPARE(item->thumbnail.size(), QSize(85, 85));
    QCOMPARE(item->thumbnail.toImage().pixelColor(40, 40), QColor(200, 100, 0));
}

void TestEditor::everyKindComesBack_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("picture") << 0;
    QTest::newRow("colour") << 1;
    QTest::newRow("text") << 2;
    QTest::newRow("effect") << 3;
}

void TestEditor::everyKindComesBack()
{
    QFETCH(int, kind);
    const QString path = env->path(QStringLiteral("p.png"));
    QImage picture(60, 40, QImage::Format_RGB32);
    picture.fill(Qt::green);
    QVERIFY(picture.save(path));

    ui->Mode_Pic->setCurrentIndex(kind);
    window->foreColor = QColor(255, 128, 64);
    window->backColor = QColor(0, 0, 90);
    switch (kind) {
    case 0:
        ui->Pic_revH->setChecked(true);
        window->picload(path);
        ui->Pic_Slide->setValue(40);
        break;
    case 2:
        ui->text_Edit->setText(QStringLiteral("AB"));
        ui->Font_size->setCurrentIndex(4);
        ui->Text_slide->setValue(7);
        ui->Text_revV->setChecked(true);
        break;
    case 3:
        ui->Spe_comboBox->setCurrentIndex(5);
        ui->Spe_width->setValue(9);
        ui->Spe_color3->setCheckState(Qt::PartiallyChecked);
        ui->Spe_revH->setChecked(true);
        break;
    default:
        break;
    }
    ui->radio_speed_m->setChecked(true);
    ui->Mode_loop->setValue(3);
    ui->Mode_t2->setTime(QTime(0, 0, 2));
    window->on_Add_Button_clicked();
    QCOMPARE(window->currentTimeline->items.size(), 1);
    TimelineItem *item = lastItem();
    const QString settings = item->settingsText;
    QCOMPARE(item->patternKind, kind);
    QCOMPARE(item->repeatCount, 3);
    QCOMPARE(item->speedValue, 0);
    QCOMPARE(item->thumbnail.height(), 85);

    // Somebody works on other things, then comes back to the pattern.
    window->foreColor = Qt::white;
    window->backColor = Qt::black;
    ui->Pic_Slide->setValue(0);
    ui->Pic_revH->setChecked(false);
    ui->text_Edit->setText(QStringLiteral("other"));
    ui->Text_revV->setChecked(false);
    ui->Spe_comboBox->setCurrentIndex(1);
    ui->Spe_color3->setCheckState(Qt::Unchecked);
    ui->Spe_revH->setChecked(false);
    ui->radio_speed_slide->setChecked(true);
    ui->Mode_Pic->setCurrentIndex((kind + 1) % 4);

    window->loadItemToEditor(item);
    QVERIFY(ui->EDIT_radio->isChecked());
    QCOMPARE(window->currentItem, item);
    QCOMPARE(ui->Mode_Pic->currentIndex(), kind);
    QCOMPARE(ui->Mode_t1->time(), QTime(0, 0));
    QCOMPARE(ui->Mode_t2->time(), QTime(0, 0, 2));
    QVERIFY(ui->radio_speed_m->isChecked());
    QCOMPARE(ui->Mode_loop->value(), 3);
    window->on_Add_Button_clicked();
    QCOMPARE(window->currentTimeline->items.size(), 1);
    QCOMPARE(item->settingsText, settings);
    QCOMPARE(whatIsWrong(*window), QString());
}

void TestEditor::editingKeepsToTheItem()
{
    addColour(1000, 3000);
    addColour(5000, 6000);
    TimelineItem *first = window->currentTimeline->items.first();
    window->loadItemToEditor(first);
    ui->Mode_t2->setTime(QTime(0, 0, 5, 500));
    QCOMPARE(first->endTime, QTime(0, 0, 3)); // nothing changes until the button is pressed
    window->on_Add_Button_clicked();
    QCOMPARE(first->endTime, QTime(0, 0, 5, 500));
    QCOMPARE(window->currentTimeline->items.at(1)->startTime, QTime(0, 0, 5, 500));
    ui->NEW_radio->setChecked(true);
    QCOMPARE(first->selected, quint8(0));
    QVERIFY(window->currentItem == nullptr);
}

void TestEditor::outdatedSettingsAreRefused()
{
    glow::PatternRecord record;
    record.settingsText = QStringLiteral("0?1?a.png");
    record.endTime = QTime(0, 0, 1);
    auto *item = new TimelineItem(glow::writePattern(record), window->currentTimeline);
    window->currentTimeline->addTimelineItem(item);
    DialogDriver driver;
    driver.answerBox(QMessageBox::Ok);
    window->loadItemToEditor(item);
    QVERIFY(driver.done());
    QCOMPARE(driver.boxes().first().title, QStringLiteral("無法讀取"));
    QCOMPARE(driver.boxes().first().text, QStringLiteral("儲存格式過舊，請使用舊版軟體(v2.9↓)進行轉檔"));
    QVERIFY(window->currentTimeline->items.contains(item));
}

void TestEditor::foreignKindChangesNothing()
{
    glow::PatternRecord record;
    record.settingsText = QStringLiteral("9?1?#ffffff|x?1|1|1");
    auto *item = new TimelineItem(glow::writePattern(record), window->currentTimeline);
    window->currentTimeline->addTimelineItem(item);
    ui->Mode_Pic->setCurrentIndex(2);
    window->loadItemToEditor(item);
    QCOMPARE(ui->Mode_Pic->currentIndex(), 2);
}

void TestEditor::foreignColourModeIsLeftAlone()
{
    glow::PatternRecord record;
    record.repeatCount = 2;
    record.settingsText = QStringLiteral("3?2?#ff0000|#000000|5|7|10?0|1|0");
    auto *item = new TimelineItem(glow::writePattern(record), window->currentTimeline);
    window->currentTimeline->addTimelineItem(item);
    ui->Spe_color3->setCheckState(Qt::PartiallyChecked);
    window->loadItemToEditor(item);
    QCOMPARE(ui->Spe_color3->checkState(), Qt::PartiallyChecked);
    QCOMPARE(ui->Spe_width->value(), 10);
    QVERIFY(ui->Spe_revH->isChecked());
}

void TestEditor::tabWithoutPictureDisablesAdding()
{
    ui->Mode_Pic->setCurrentIndex(1);
    QVERIFY(ui->Add_Button->isEnabled());
    ui->PicDir->setText(env->path(QStringLiteral("gone.png")));
    ui->Mode_Pic->setCurrentIndex(0);
    QVERIFY(!ui->Add_Button->isEnabled());
}

void TestEditor::hoveringShowsTheBand()
{
    ui->Mode_t1->setTime(QTime(0, 0, 1));
    ui->Mode_last->setValue(2.0);
    window->on_Addbutton_hovered(true);
    const QWidget *band = window->currentTimeline->readyBand;
    QVERIFY(!band->isHidden());
    QCOMPARE(band->geometry(), QRect(100, 0, 200, 55));
    window->on_Addbutton_hovered(true);
    QVERIFY(band->isHidden());
    window->on_Addbutton_hovered(true);
    window->on_Addbutton_hovered(false);
    QVERIFY(band->isHidden());
}

void TestEditor::ledsRenderAnew()
{
    const QString path = env->path(QStringLiteral("wide.png"));
    QVERIFY(QImage(200, 100, QImage::Format_RGB32).save(path));
    window->picload(path);
    QCOMPARE(window->patternWidth, 140);
    ui->Leds->setValue(36);
    QCOMPARE(ledCount, qint16(36));
    QCOMPARE(window->patternWidth, 72);
}

QTEST_MAIN(TestEditor)
#include "test_editor.moc"
