// The window's shell: construction, closing, new, keys, dropped files, the gadget menu, the status text.
#include "show/model/propvalues.h"
#include "support/windowtest.h"

#include <QActionGroup>
#include <QDropEvent>
#include <QMetaMethod>
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
        QVERIFY(gadget(3)->isChecked() && ui->actionChinese->isChecked());
        QCOMPARE(window->picPath, QDir::homePath() + "/Pictures");
        QCOMPARE(window->currentFile, QDir::homePath() + "/Documents");
        gadget(2)->trigger();
        env->setValue("main/currentpicpath", "/p/a.png");
        env->setValue("main/currentfile", "/s/b.gsw3");
        DialogDriver driver;
        for (QAction *action : {ui->actionChinese, ui->actionEnglish}) {
            driver.answerBox(QMessageBox::Ok);
            action->trigger();
            QCOMPARE(env->value("main/language").toInt(), action == ui->actionChinese ? 1 : 2);
        }
        QVERIFY(driver.done());
        build();
        QCOMPARE(window->picPath, QString("/p/a.png"));
        QCOMPARE(window->currentFile, QString("/s/b.gsw3"));
        QVERIFY(!window->hasFile && ui->actionEnglish->isChecked() && gadget(2)->isChecked());
        QVERIFY(ledCount == 48 && frameRate == 1100.0F && ui->FPS_V->value() == 1100);

        gadget(0)->trigger(); // custom: the numbers stay and can be typed
        QVERIFY(ui->Leds->value() == 48 && ui->Leds->isEnabled() && ui->FPS_V->isEnabled());
        QCOMPARE(env->value("main/gadget").toInt(), 2);
        ui->FPS_V->setValue(1200);
        QCOMPARE(frameRate, 1200.0F);
        gadget(1)->trigger();
        QVERIFY(!ui->Leds->isEnabled() && !ui->FPS_V->isEnabled());

        env->setValue("main/language", 0);
        for (const int stored : {99, -1}) { // no row of the catalogue
            env->setValue("main/gadget", stored);
            ledCount = 0;
            build();
            QVERIFY(gadget(0)->isChecked() && ui->Leds->isEnabled() && !ui->actionChinese->isChecked());
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
        window->setWindowTitle("Glowsmith - a.gsw3  ");
        for (const auto answer : {QMessageBox::Cancel, QMessageBox::Yes}) {
            window->hasFile = true;
            DialogDriver driver;
            driver.answerBox(answer);
            QCOMPARE(window->on_actionNew_triggered(), answer == QMessageBox::Yes);
            QVERIFY(driver.done());
            QCOMPARE(driver.boxes().first().defaultButton, QMessageBox::Cancel);
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
        drop({"http://localhost/a.bmp"}); // no local file: nothing

        DialogDriver driver;
        driver.answerBox(QMessageBox::Ok);
        drop({"file:///b.PNG", "file://" + first});
        QVERIFY(driver.done());
        QCOMPARE(driver.boxes().first().text, QString("無法辨識的副檔名 .PNG"));
        QCOMPARE(ui->PicDir->text(), first);
    }

private:
    void build()
    {
        window.reset();
        window.reset(new MainWindow);
        ui = window->ui;
    }
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

    QAction *gadget(int position) { return window->gadgetGroup->actions().at(position); }
};

QTEST_MAIN(TestWindow)
#include "test_window.moc"
