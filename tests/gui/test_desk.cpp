// The window at work: zooming by Ctrl, projects that were open before, dialogs that start somewhere, a layout that
// comes back, and a sample show that is whole.
#include "library/about.h"
#include "show/base/startfolder.h"
#include "show/model/projectfile.h"
#include "show/model/recentprojects.h"
#include "support/windowtest.h"
#include "ui_about.h"

#include <QMenu>
#include <QSplitter>
#include <QWheelEvent>

class TestDesk : public WindowTest
{
    Q_OBJECT

private:
    // A notch up over the ruler; how far that zoomed.
    int zoomedBy(Qt::KeyboardModifiers held)
    {
        const int before = ui->timeline_scaler->value();
        QWheelEvent wheel({5, 5}, ui->timeline_scroll->mapToGlobal(QPoint(5, 5)), {}, {0, 120}, Qt::NoButton, held,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(ui->timeline_scroll->viewport(), &wheel);
        return ui->timeline_scaler->value() - before;
    }

    QString project(const QString &name)
    {
        glow::Project empty;
        empty.tracks.resize(1);
        const QString path = env->path(name);
        return put(path, glow::writeProject(empty)) ? path : QString();
    }

private slots:
    void controlZoomsWhereverTheFocusIs()
    {
        window->show();
        QVERIFY(QTest::qWaitForWindowActive(window.data()));
        const struct
        {
            QWidget *focus;
            int key; // pressed before, 0 for none
            Qt::KeyboardModifiers held;
            int zoomed;
        } rows[] = {
            {ui->timeline_scroll, 0, Qt::NoModifier, 0},
            {ui->timeline_scroll, Qt::Key_Control, Qt::NoModifier, 4}, // the key alone counts
            {ui->timeline_scroll, Qt::Key_X, Qt::ControlModifier, 0},  // another key was the last
            {ui->timeline_scroll, 0, Qt::ControlModifier, 4},          // pressed elsewhere
            {ui->Add_Button, 0, Qt::ControlModifier, 4},
            {ui->PicDir, 0, Qt::ControlModifier, 4}, // a field to read only
            {ui->text_Edit, 0, Qt::ControlModifier, 0},
            {ui->Mode_t1, 0, Qt::ControlModifier, 0},
            {ui->fontComboBox, 0, Qt::ControlModifier, 0},
        };
        ui->Mode_Pic->setCurrentIndex(2);
        // A release goes to what has the focus then, such as a dialog.
        ui->timeline_scroll->setFocus();
        QTest::keyPress(ui->timeline_scroll, Qt::Key_Control);
        ui->Add_Button->setFocus();
        for (const auto &row : rows) {
            row.focus->setFocus();
            if (row.key != 0) {
                QTest::keyPress(row.focus, Qt::Key(row.key));
            }
            const int zoomed = zoomedBy(row.held);
            QVERIFY2(zoomed == row.zoomed,
                     qPrintable(QString("%1 %2 %3").arg(row.focus->objectName()).arg(row.key).arg(zoomed)));
            if (row.key != 0) {
                QTest::keyRelease(row.focus, Qt::Key(row.key));
            }
        }
    }

    void recentProjectsAreOffered()
    {
        QStringList paths;
        for (int i = 0; i < 9; ++i) {
            paths.prepend(project(QString("%1 & co.gsw3").arg(i)));
            window->LoadFile(paths.first());
        }
        window->LoadFile(paths.at(3)); // comes to the front once more
        paths.move(3, 0);
        QCOMPARE(glow::recentProjects(), paths.mid(0, 8));
        QVERIFY(QFile::remove(paths.at(1)));

        auto *menu = window->findChild<QMenu *>("menuRecent");
        QCOMPARE(ui->menu->actions().last()->objectName(), QString("actionQuit"));
        emit menu->aboutToShow();
        const QList<QAction *> entries = menu->actions();
        QCOMPARE(entries.size(), 8);
        QVERIFY(entries.at(0)->isEnabled() && !entries.at(1)->isEnabled());
        QVERIFY(entries.at(2)->text().startsWith("&3  7 && co.gsw3  ("));
        DialogDriver driver;
        driver.answerBox(QMessageBox::Cancel);
        driver.answerBox(QMessageBox::Yes);
        entries.at(2)->trigger();
        QCOMPARE(window->currentFile, paths.at(0));
        entries.at(2)->trigger();
        QVERIFY(driver.done());
        QCOMPARE(window->currentFile, paths.at(2));

        env->setValue("main/currentfile", paths.at(0));
        about start;
        start.ui->load_current->actions().at(0)->trigger();
        QCOMPARE(start.loadPath, paths.at(2));
    }

    void dialogsStartWhereThereIsSomething()
    {
        const QString folder = env->path();
        const QString file = project("a.gsw3");
        const QString home = QDir::homePath();
        const struct
        {
            QString path;
            QString opening;
            QString saving;
        } rows[] = {
            {file, file, file},
            {folder, folder, folder},
            {folder + "/gone.gsw3", folder, folder + "/gone.gsw3"},
            {folder + "/x/y/gone.gsw3", folder, folder + "/gone.gsw3"},
            {folder + "/Documents", folder, folder},
            {file + "/b.gsw3", folder, folder + "/b.gsw3"}, // a file where a folder was
            {"/no/such/place.bin", home, home + "/place.bin"},
            {":/sample/waves.png", home, home},
            {"", home, home},
        };
        for (const auto &row : rows) {
            QCOMPARE(glow::startForOpening(row.path), row.opening);
            QCOMPARE(glow::startForSaving(row.path), row.saving);
        }
    }

    void layoutComesBack()
    {
        window->show();
        window->addDockWidget(Qt::RightDockWidgetArea, ui->dockWidget_3);
        ui->splitter->setSizes({300, 500});
        ui->timeline_splitter->setSizes({150, 150});
        QCoreApplication::processEvents();
        window->keepLayout();
        MainWindow next;
        next.resize(window->size());
        next.restoreLayout();
        next.show();
        QCOMPARE(next.dockWidgetArea(next.ui->dockWidget_3), Qt::RightDockWidgetArea);
        const auto isAsBefore = [](const QSplitter *now, const QSplitter *then) {
            return qAbs(now->sizes().last() - then->sizes().last()) <= 6; // the rest is shared out anew
        };
        QVERIFY(isAsBefore(next.ui->splitter, ui->splitter));
        QVERIFY(isAsBefore(next.ui->timeline_splitter, ui->timeline_splitter));
    }

    void theSampleShowFindsItsPictures()
    {
        DialogDriver driver;
        window->LoadFile(GLOWSMITH_SAMPLE); // asks nothing
        QVERIFY(driver.done() && driver.boxes().isEmpty());
        QVERIFY(window->settingsTexts().size() > 6);
        QCOMPARE(window->scanMissingPictures(), 1);
    }
};

QTEST_MAIN(TestDesk)
#include "test_desk.moc"
