// The window's shell and its pattern panel: start, new, dropped files and the choice of the prop; fields that keep each
// other in step, patterns written and read back.
#include "show/model/propvalues.h"
#include "support/windowtest.h"

#include <QActionGroup>
#include <QDropEvent>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QMimeData>

class TestWindow : public WindowTest
{
    Q_OBJECT

private slots:
    // A widget renamed in the form would leave its slot without a caller, and nobody would say so.
    void slotsHaveTheirWidgets()
    {
        QStringList lonely;
        const QMetaObject &type = MainWindow::staticMetaObject;
        for (int i = type.methodOffset(); i < type.methodCount(); ++i) {
            const QString name = type.method(i).name();
            const QObject *sender = window->findChild<QObject *>(name.mid(3).section('_', 0, -2));
            bool called = !name.startsWith("on_");
            for (int j = 0; sender != nullptr && j < sender->metaObject()->methodCount(); ++j) {
                called = called || sender->metaObject()->method(j).name() == name.section('_', -1);
            }
            if (!called) {
                lonely << name.mid(3);
            }
        }
        lonely.sort();
        // Of tracks, patterns and their menus, connected where these are made; and those that nothing calls.
        QCOMPARE(lonely, QStringList({"Addbutton_hovered", "Song_rate_valueChanged", "Song_rec_clicked",
                                      "action_LED_M_triggered", "itemCopy_clicked", "itemPaste_clicked",
                                      "timelineItem_Clicked", "timelineItem_dragEnd", "timeline_Pressed",
                                      "timeline_dragIn", "timeline_scrolled", "tlDuplicated_clicked"}));
    }

    void startsFromTheSettings()
    {
        QCOMPARE(window->picPath, QDir::homePath() + "/Pictures");
        QCOMPARE(window->currentFile, QDir::homePath() + "/Documents");
        gadget(2)->trigger();
        env->setValue("main/currentpicpath", "/p/a.png");
        env->setValue("main/currentfile", "/s/b.gsw3");
        DialogDriver driver;
        driver.answerBox(QMessageBox::Ok);
        ui->actionEnglish->trigger();
        build();
        QCOMPARE(window->picPath + ' ' + window->currentFile, QString("/p/a.png /s/b.gsw3"));
        QVERIFY(driver.done() && !window->hasFile && ui->actionEnglish->isChecked() && gadget(2)->isChecked());
        QVERIFY(ledCount == 48 && frameRate == 1100.0F && shown("Leds FPS_V") == "48 1100");

        gadget(0)->trigger(); // custom: the numbers stay and can be typed
        QVERIFY(shown("Leds FPS_V") == "48 1100" && ui->Leds->isEnabled() && ui->FPS_V->isEnabled());
        QCOMPARE(env->value("main/gadget").toInt(), 2);
        ui->FPS_V->setValue(1200);
        QCOMPARE(frameRate, 1200.0F);
        gadget(1)->trigger();
        QVERIFY(!ui->Leds->isEnabled() && !ui->FPS_V->isEnabled());

        for (const int stored : {99, -1}) { // no row of the catalogue
            env->setValue("main/gadget", stored);
            ledCount = 0;
            build();
            QVERIFY(gadget(0)->isChecked() && ui->Leds->isEnabled());
            // Text and effect without a height: nothing to divide by, nothing to crash on.
            for (int tab = 0; tab < 4; ++tab) {
                ui->Mode_Pic->setCurrentIndex(tab);
                QVERIFY(window->suggestRepeat() >= 1);
            }
        }
    }

    void newStartsAfreshOrForgetsTheFile()
    {
        ui->Mode_Pic->setCurrentIndex(1);
        window->on_Add_Button_clicked();
        window->on_timelineItem_Clicked(window->currentTimeline->items.first(), false);
        for (const auto answer : {QMessageBox::Cancel, QMessageBox::Yes}) {
            window->hasFile = true;
            DialogDriver driver;
            driver.answerBox(answer);
            QCOMPARE(window->on_actionNew_triggered(), answer == QMessageBox::Yes);
            QVERIFY(driver.done() && driver.boxes().first().defaultButton == QMessageBox::Cancel);
            QVERIFY(!window->hasFile && window->history.index == 0);
            window->on_actionUndo_triggered();
            QCOMPARE(window->currentTimeline->items.size(), answer == QMessageBox::Yes ? 0 : 1);
        }
        QVERIFY(window->currentItem == nullptr && window->previewItem == nullptr && ui->NEW_radio->isChecked());
        QVERIFY(ui->Mode_t1->time() == QTime(0, 0) && ui->Mode_t2->time() == QTime(0, 0, 5));
        QCOMPARE(window->windowTitle(), QString("Glowsmith"));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCOMPARE(window->findChildren<Timeline *>().size(), 1);
    }

    void firstDroppedFileCounts()
    {
        const QString first = env->path("a.png");
        QVERIFY(QImage(10, 10, QImage::Format_RGB32).save(first));
        ui->Mode_Pic->setCurrentIndex(2);
        drop({"file://" + first, "file:///b.PNG"});
        QCOMPARE(ui->PicDir->text(), first);
        QCOMPARE(ui->Mode_Pic->currentIndex(), 0);
        const QString said = ui->statusBar->currentMessage(); // what happened to the others
        QVERIFY2(said.contains("b.PNG") && !said.contains("a.png"), qPrintable(said));
        drop({"http://localhost/a.bmp"}); // no local file: nothing
        DialogDriver driver;
        driver.answerBox(QMessageBox::Ok);
        drop({"file:///b.PNG", "file://" + first});
        QVERIFY(driver.done() && driver.boxes().first().text == "無法辨識的副檔名 .PNG");
    }

    void timeFieldsKeepInStep()
    {
        using Step = std::tuple<char, int, const char *>; // the field that is set, to what; start, length and end then
        for (const auto &[field, ms, then] : {Step{'s', 62003, "62003 5000 67003"},
                                              {'e', 64253, "62003 2250 64253"},
                                              {'s', 10000, "10000 2250 12250"},
                                              {'e', 4000, "10000 100 10100"},  // an end before the start
                                              {'e', 3000, "10000 100 10100"},  // once more, the length being the least
                                              {'e', 10040, "10000 100 10100"}, // too short a length
                                              {'l', 1001, "10000 1001 11001"}, // 1.001 * 1000 is rounded, being less,
                                              {'s', 0, "0 1000 1000"},         // and cut when the start moves
                                              {'e', 1500000, "0 1000000 1000000"}}) {
            if (field == 'l') {
                ui->Mode_last->setValue(ms / 1000.0);
            } else {
                (field == 's' ? ui->Mode_t1 : ui->Mode_t2)->setTime(glow::timeOf(ms));
            }
            QCOMPARE(QString("%1 %2 %3")
                         .arg(glow::msOf(ui->Mode_t1->time()))
                         .arg(qRound(ui->Mode_last->value() * 1000))
                         .arg(glow::msOf(ui->Mode_t2->time())),
                     QString(then));
        }
    }

    void countFollowsSpeedOrTyping()
    {
        window->patternWidth = 500;
        ui->Speed_slide->setValue(12);
        ui->Mode_last->setValue(2.0);
        QCOMPARE(shown("suggest Mode_loop"), QString("7 7")); // 2 * 12 * 1500 / 5000 = 7.2
        ui->radio_speed_m->setChecked(true);
        ui->Speed_slide->setValue(2);
        QCOMPARE(shown("suggest Mode_loop"), QString("1 7"));
        ui->radio_speed_slide->setChecked(true);
        QVERIFY(ui->Mode_loop->value() == 1 && !ui->Mode_loop->isEnabled());

        // A count that is typed selects fixed mode, one that is set does not.
        ui->Mode_loop->setEnabled(true);
        ui->Mode_loop->setValue(4);
        QVERIFY(ui->radio_speed_slide->isChecked());
        ui->Mode_loop->setFocus();
        QTRY_VERIFY(ui->Mode_loop->hasFocus());
        QTest::keyClick(ui->Mode_loop, Qt::Key_Up);
        QCOMPARE(shown("Mode_loop radio_speed_m"), QString("5 true"));
    }

    void patternsFollowOnAndAreEdited()
    {
        window->on_Add_Button_clicked(); // there is no picture yet
        QCOMPARE(window->history.index, 0);
        ui->Mode_Pic->setCurrentIndex(1);
        ui->Mode_t2->setTime(QTime(0, 0, 1, 500));
        window->on_Add_Button_clicked();
        const QWidget *band = window->currentTimeline->readyBand;
        window->on_Addbutton_hovered(true);
        QCOMPARE(band->geometry(), QRect(150, 0, 150, 55)); // where the next one goes
        window->on_Add_Button_clicked();
        QCOMPARE(spans(window->currentTimeline), QString("0-1500 1500-3000"));
        QCOMPARE(window->headTime(), QTime(0, 0, 3));

        TimelineItem *first = window->currentTimeline->items.first();
        QCOMPARE(first->speedValue, 10);
        window->loadItemToEditor(first);
        window->on_Addbutton_hovered(true);
        QVERIFY(band->isHidden());
        ui->Mode_t2->setTime(QTime(0, 0, 2));
        QCOMPARE(first->endTime, QTime(0, 0, 1, 500)); // nothing changes until the button is pressed
        window->on_Add_Button_clicked();
        QCOMPARE(spans(window->currentTimeline), QString("0-2000 2000-3000"));
        ui->NEW_radio->setChecked(true);
        QVERIFY(first->selected == 0 && window->currentItem == nullptr);
        QCOMPARE(ui->Mode_t1->time(), QTime(0, 0, 3)); // at the play-head
    }

    // Each pattern is loaded into a panel full of another one's settings, is shown, and written again as it was.
    void patternsComeBackWhole()
    {
        const QString path = env->path("p.png");
        QVERIFY(QImage(60, 40, QImage::Format_RGB32).save(path));
        const QStringList fields{"Pic_Slide Pic_revH Pic_revV", "Color_R Color_G Color_B",
                                 "text_Edit Font_size Text_slide Text_revH Text_revV",
                                 "Spe_width Spe_revH Spe_revV Spe_rnum Spe_gnum Spe_bnum"};
        int start = 0;
        for (const auto &[settings, values] : {std::pair<QString, QString>("0?3?" + path + "?40|1|0", "40 true false"),
                                               {"2?3?#ff8040|#00005a|AB|1|4?7|0|1", "AB 5 7 false true"},
                                               {"3?3?#ff0000|#000001|5|1|9?0|1|0", "9 true false 255 0 0"},
                                               {"1?#ff8040", "255 128 64"},
                                               {"0?3?" + path + "?8|0|1", "8 false true"}}) {
            const int kind = settings.left(1).toInt();
            // A colour is in fixed mode, whatever speed it holds.
            TimelineItem *item = add(patternBlob(settings, start, 2000, Qt::blue, 3, kind == 1 ? 8 : 0));
            const glow::PatternRecord before = glow::readPattern(item->itemData);
            ui->radio_speed_slide->setChecked(true);
            window->loadItemToEditor(item);
            QCOMPARE(ui->Add_Button->text(), QString("確認編輯"));
            QCOMPARE(ui->Mode_Pic->currentIndex(), kind);
            QCOMPARE(shown(fields.at(kind) + " Mode_loop"), values + " 3");

            window->on_Add_Button_clicked();
            const glow::PatternRecord after = glow::readPattern(item->itemData);
            QCOMPARE(after.settingsText, settings);
            QVERIFY(after.startTime == before.startTime && after.endTime == before.endTime);
            QVERIFY(after.patternKind == kind && after.repeatCount == 3 && after.speedValue == 0);
            QVERIFY(after.thumbnail.height() == 85 && after.thumbnail.toImage() != before.thumbnail.toImage());
            QCOMPARE(after.solidColor, kind == 1 ? QColor(settings.mid(2)) : QColor());
            start += 2000;
        }

        ui->Mode_Pic->setCurrentIndex(1);
        QVERIFY(QFile::remove(path) && ui->Add_Button->isEnabled());
        ui->Mode_Pic->setCurrentIndex(0);
        QVERIFY(!ui->Add_Button->isEnabled()); // its file is gone
    }

    void foreignSettings()
    {
        DialogDriver driver;
        driver.answerBox(QMessageBox::Ok);
        window->loadItemToEditor(add(patternBlob("0?1?a.png", 0)));
        QVERIFY(driver.done());
        // A kind that does not exist changes no tab, a mode that does not exist no mode.
        ui->Mode_Pic->setCurrentIndex(2);
        window->loadItemToEditor(add(patternBlob("9?1?#ffffff|x?1|1|1", 1000)));
        QCOMPARE(ui->Mode_Pic->currentIndex(), 2);
        ui->Spe_color3->setCheckState(Qt::PartiallyChecked);
        window->loadItemToEditor(add(patternBlob("3?2?#ff0000|#000000|5|7|10?0|1|0", 2000, 500, Qt::red, 1, 8)));
        QCOMPARE(ui->Spe_color3->checkState(), Qt::PartiallyChecked);
        QCOMPARE(shown("Spe_width Speed_slide radio_speed_slide"), QString("10 8 true"));
    }

private:
    void build()
    {
        window.reset();
        window.reset(new MainWindow);
        ui = window->ui;
    }
    QAction *gadget(int position) { return window->gadgetGroup->actions().at(position); }

    void drop(const QStringList &urls)
    {
        QMimeData data;
        data.setUrls(QUrl::fromStringList(urls));
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(window.data(), &enter);
        QVERIFY(enter.isAccepted());
        QDropEvent event(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(window.data(), &event);
    }

    // What the named widgets show to the user.
    QString shown(const QString &names) const
    {
        QStringList texts;
        for (const QString &name : names.split(' ')) {
            const auto *widget = window->findChild<QWidget *>(name);
            texts << widget->metaObject()->userProperty().read(widget).toString();
        }
        return texts.join(' ');
    }
};

QTEST_MAIN(TestWindow)
#include "test_window.moc"
