// What the status line and the check say, and that it is true.
#include "device/checkdialog.h"
#include "forms/statusnotes.h"
#include "show/base/timeleft.h"
#include "show/model/projectfile.h"
#include "support/windowtest.h"

#include <QListWidget>
#include <QStatusBar>

class TestMessages : public WindowTest
{
    Q_OBJECT

private:
    QString said() const { return ui->statusBar->currentMessage(); }
    void addColour(int startMs, int lengthMs = 500)
    {
        add(patternBlob("1?#ff0000", startMs, lengthMs));
        window->updateStatus();
    }

private slots:
    void cleanup()
    {
        glow::noteMs = 10000;
        WindowTest::cleanup();
    }

    void aSaveSaysWhereOrWhy()
    {
        const struct
        {
            QString path;
            QString says;
            bool box;
        } rows[] = {{env->path("a.gsw3"), "已存檔：a.gsw3", false},
                    {env->path("no/folder.gsw3"), "沒有存檔：" + env->path("no/folder.gsw3"), false},
                    {"/dev/full", "沒有存檔：/dev/full", true},
                    {env->path("a.gsw"), "光舞存到了 " + env->path("a.gsw"), false}};
        for (const auto &row : rows) {
            window->setWindowTitle("Glowsmith - x *");
            window->currentFile = row.path;
            window->hasFile = true;
            DialogDriver driver;
            if (row.box) {
                driver.answerBox(QMessageBox::Ok);
            }
            window->on_actionSave_triggered();
            QVERIFY(driver.done());
            QVERIFY2(said().startsWith(row.says), qPrintable(said()));
            QCOMPARE(window->windowTitle().endsWith('*'), row.says.startsWith("沒有存檔"));
        }
        // What needs no answer goes, what does stays; a later message is nobody's to take.
        glow::noteMs = 1;
        window->currentFile = env->path("a.gsw3");
        window->on_actionSave_triggered();
        QTRY_COMPARE(said(), QString());
    }

    void openingSaysWhatIsWrong()
    {
        glow::Project project;
        project.tracks = {{patternBlob("1?#ff0000", 0)}};
        const QByteArray binary = glow::writeProject(project);
        const QByteArray text = "48><1000\n00:00.000><00:01.000><1?#ff0000\n";
        const struct
        {
            const char *name;
            QByteArray bytes;
            QString says; // its beginning
        } rows[] = {{"good.gsw3", binary, ""},
                    {"text.gsw", text, ""},
                    {"empty.gsw", "", ""},
                    {"binary.gsw", binary, env->path("binary.gsw") + " 裡是 .gsw3 專案"},
                    {"binary.bin", binary, env->path("binary.bin") + " 裡是 .gsw3 專案"},
                    {"absent.gsw3", "absent", "檔案不存在："}};
        for (const auto &row : rows) {
            const QString path = env->path(row.name);
            QVERIFY(row.bytes == "absent" || put(path, row.bytes));
            window->LoadFile(path);
            QVERIFY2(row.says.isEmpty() ? said().isEmpty() : said().startsWith(row.says), qPrintable(said()));
        }
    }

    // The words against what Undo really does.
    void deleteTellsWhatUndoTakesBack()
    {
        for (const int before : {0, 1}) { // changes that can be undone
            window->LoadFile(env->path("none.gsw3"));
            for (int i = 0; i < before; ++i) {
                addColour(i * 1000);
            }
            if (before == 0) {
                add(patternBlob("1?#ff0000", 0));
            }
            window->currentItem = window->currentTimeline->items.last();
            QTest::keyClick(window.data(), Qt::Key_Delete);
            QVERIFY(window->currentTimeline->items.isEmpty());
            QVERIFY(said().contains(before == 0 ? "「復原」無法讓它回來" : "先「復原」再「重作」，圖樣就會回來"));
            window->on_actionUndo_triggered();
            QVERIFY(window->currentTimeline->items.isEmpty());
            window->on_actionRedo_triggered();
            QCOMPARE(window->currentTimeline->items.size(), before);
        }
    }

    void checkLeadsToThePlaces()
    {
        QAction *check = ui->menu_4->findChild<QAction *>("actionCheck");
        check = check != nullptr ? check : window->findChild<QAction *>("actionCheck");
        QVERIFY(check != nullptr && ui->menu_4->actions().contains(check));
        check->trigger();
        const auto *dialog = window->findChild<CheckDialog *>();
        QVERIFY(dialog->list->count() == 0 && dialog->summary->text().contains("沒有圖樣"));
        addColour(100, 1000);
        addColour(1200, 500);
        addColour(1600, 100);
        addColour(1600, 700); // an export would cut this one
        const QVector<QByteArray> before = window->trackBlobs();
        check->trigger();
        QCOMPARE(window->findChildren<CheckDialog *>().size(), 1);
        QStringList lines;
        for (int i = 0; i < dialog->list->count(); ++i) {
            lines << dialog->list->item(i)->text().section("  ", 1);
        }
        QCOMPARE(lines.mid(0, 3),
                 (QStringList{"第一個圖樣前的 100 毫秒空白會被略過", "100 毫秒的空白會被略過：之後的都會提前",
                              "兩個圖樣重疊 100 毫秒：之後的都會延後"}));
        QCOMPARE(window->trackBlobs(), before);
        emit dialog->list->itemActivated(dialog->list->item(1));
        QCOMPARE(window->headTime(), QTime(0, 0, 1, 100));
        // Far away it is scrolled into view.
        addColour(200000, 1000);
        addColour(201100, 1000);
        check->trigger();
        emit dialog->list->itemActivated(dialog->list->item(dialog->list->count() - 1));
        QCOMPARE(window->headTime(), QTime(0, 3, 21));
        QVERIFY(!ui->timeline_headers->indicator->visibleRegion().isEmpty());
    }

    void timeLeftIsToldOnceItCanBe()
    {
        const struct
        {
            qint64 elapsed;
            double share;
            int seconds; // -1: not told
        } rows[] = {{999, 0.5, -1},   {1000, 0.5, 1},         {1000, 0.001, -1},   {30000, 0.25, 90},
                    {30000, 1, -1},   {30000, 2, -1},         {30000, -1, -1},     {30000, 0, -1},
                    {10001, 0.5, 11}, {1000000000, 0.01, -1}, {30000, qQNaN(), -1}};
        for (const auto &row : rows) {
            QCOMPARE(glow::secondsLeft(row.elapsed, row.share).value_or(-1), row.seconds);
        }
        QCOMPARE(glow::timeLeftText(59), QString("約剩 59 秒"));
        QCOMPARE(glow::timeLeftText(125), QString("約剩 2:05"));
    }
};

QTEST_MAIN(TestMessages)
#include "test_messages.moc"
