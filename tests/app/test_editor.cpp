// The pattern panel on the real window: fields that keep each other in step, patterns written and read back.
#include "support/windowtest.h"

#include <QMetaProperty>

class TestEditor : public WindowTest
{
    Q_OBJECT

private slots:
    void timeFieldsKeepInStep()
    {
        const struct
        {
            char field; // the one that is set: start, end or length
            int ms;
            int start, length, end; // what all three hold then
        } steps[] = {{'s', 62003, 62003, 5000, 67003},
                     {'e', 64253, 62003, 2250, 64253},
                     {'s', 10000, 10000, 2250, 12250},
                     {'e', 4000, 10000, 100, 10100},  // an end before the start
                     {'e', 3000, 10000, 100, 10100},  // once more, the length being the least already
                     {'e', 10040, 10000, 100, 10100}, // too short a length
                     {'l', 1001, 10000, 1001, 11001}, // 1.001 * 1000 is rounded, being just below 1001,
                     {'s', 0, 0, 1000, 1000},         // and cut when the start moves
                     {'e', 1500000, 0, 1000000, 1000000}};
        for (const auto &step : steps) {
            if (step.field == 'l') {
                ui->Mode_last->setValue(step.ms / 1000.0);
            } else {
                (step.field == 's' ? ui->Mode_t1 : ui->Mode_t2)->setTime(glow::timeOf(step.ms));
            }
            QCOMPARE(glow::msOf(ui->Mode_t1->time()), step.start);
            QCOMPARE(qRound(ui->Mode_last->value() * 1000), step.length);
            QCOMPARE(glow::msOf(ui->Mode_t2->time()), step.end);
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
        QVERIFY(ui->Mode_loop->value() == 5 && ui->radio_speed_m->isChecked());
    }

    void patternsFollowOnAndAreEdited()
    {
        window->on_Add_Button_clicked(); // there is no picture yet
        QCOMPARE(window->history.index, 0);
        ui->Mode_Pic->setCurrentIndex(1);
        ui->Mode_t2->setTime(QTime(0, 0, 1, 500));
        window->on_Add_Button_clicked();
        window->on_Addbutton_hovered(true);
        QCOMPARE(window->currentTimeline->readyBand->geometry(), QRect(150, 0, 150, 55)); // where the next one goes
        window->on_Add_Button_clicked();
        TimelineItem *first = window->currentTimeline->items.value(0);
        const TimelineItem *second = window->currentTimeline->items.value(1);
        QVERIFY(second->startTime == QTime(0, 0, 1, 500) && second->endTime == QTime(0, 0, 3));
        QCOMPARE(second->speedValue, 10);
        QCOMPARE(ui->timeline_headers->indicator->indicatorTime, QTime(0, 0, 3));

        window->loadItemToEditor(first);
        window->on_Addbutton_hovered(true);
        QVERIFY(window->currentTimeline->readyBand->isHidden());
        ui->Mode_t2->setTime(QTime(0, 0, 2));
        QCOMPARE(first->endTime, QTime(0, 0, 1, 500)); // nothing changes until the button is pressed
        window->on_Add_Button_clicked();
        QVERIFY(first->endTime == QTime(0, 0, 2) && second->startTime == first->endTime);
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
            QCOMPARE(shown(fields.at(kind)), values);
            QCOMPARE(ui->Mode_loop->value(), 3);

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
        QVERIFY(ui->radio_speed_slide->isChecked());
        QCOMPARE(shown("Spe_width Speed_slide"), QString("10 8"));
    }

private:
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

QTEST_MAIN(TestEditor)
#include "test_editor.moc"
