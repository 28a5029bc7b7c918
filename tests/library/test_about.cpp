// The start dialog: what its buttons give, and the version check in all its outcomes against a local server.
#include "httpserver.h"
#include "library/about.h"
#include "support/dialogdriver.h"
#include "support/samples.h"
#include "support/testenv.h"
#include "ui_about.h"

#include <QNetworkAccessManager>
#include <QtTest>

class TestAbout : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        env.reset(new TestEnv);
        server.reset(new HttpServer);
        QVERIFY(server->isListening());
        server->answer("3.104");
        qputenv("GLOWSMITH_UPDATE_URL", server->url());
    }

    void cleanup()
    {
        server.reset();
        env.reset();
    }

    void buttonsEndTheDialog()
    {
        const QString show = "/gone/a show.gsw3";
        const struct
        {
            QString way; // a button, or another way to end it
            QString last;
            QString loadPath;
        } rows[] = {{"pushButton0", "", ""}, {"load_current", show, show}, {"return", show, ""}};
        for (const auto &row : rows) {
            if (!row.last.isEmpty()) {
                env->setValue("main/currentfile", row.last);
            }
            about dialog;
            QCOMPARE(dialog.ui->label_3->text(), QString("Glowsmith ver3.104"));
            QCOMPARE(dialog.ui->load_current->isHidden(), row.last.isEmpty());
            DialogDriver driver;
            driver.overlook(&dialog);
            QTimer::singleShot(0, &dialog, [&] {
                if (row.way == "return") {
                    dialog.activateWindow();
                    QVERIFY(QTest::qWaitForWindowActive(&dialog));
                    dialog.ui->pushButton_2->setFocus();
                    QTest::keyClick(dialog.ui->pushButton_2, Qt::Key_Return);
                } else {
                    dialog.findChild<QPushButton *>(row.way)->click();
                }
            });
            QCOMPARE(dialog.exec(), 0);
            QVERIFY(driver.done());
            QCOMPARE(dialog.loadPath, row.loadPath);
        }
    }

    void loadButtonStaysWithoutAFile()
    {
        const QString show = env->path("home/Documents/show.gsw3");
        QVERIFY(put(show));
        about dialog;
        dialog.show();
        DialogDriver driver;
        for (const bool chosen : {false, true}) {
            driver.answerFile(chosen ? QStringList(show) : QStringList());
            dialog.ui->load_button->click();
            QCOMPARE(dialog.isVisible(), !chosen);
        }
        QCOMPARE(driver.files().first().directory, env->path("home/Documents"));
        QCOMPARE(driver.files().first().filters, QStringList("*.gsw *.gsw3"));
        QCOMPARE(dialog.loadPath, show);
        QCOMPARE(dialog.result(), 0);
        QVERIFY(driver.done());
    }

    void checkAnswers()
    {
        const struct
        {
            const char *body;
            QByteArray status; // empty: nobody listens; "endless": the body never ends
            QString question;  // the title of the offer; "current": there is no newer version; empty: the check failed
            QString note;
        } rows[] = {{"3.104", "200 OK", "current", ""},
                    {"3.1039\nolder;;x", "200 OK", "current", ""},
                    {"3.104.1\n", "200 OK", "current", ""}, // no number
                    {"\n9.9", "200 OK", "current", ""},
                    {"3.2\r\n<b>新</b>\n&amp;好;;more;;", "200 OK", "有更新 最新版為ver3.2\r\n", "<b>新</b>\n&amp;好"},
                    {"3.1041", "200 OK", "有更新 最新版為ver3.1041", ""},
                    {"", "200 OK", "", ""},
                    {"4.0\nnote", "404 Not Found", "", ""},
                    {"4.0\nnote", "302 Found", "", ""},
                    {"4.0\nnote", "endless", "", ""},
                    {"", "", "", ""}};
        for (const auto &row : rows) {
            server->requests.clear();
            server->endless = row.status == "endless";
            server->answer(row.body, server->endless ? "200 OK" : row.status);
            if (row.status.isEmpty()) {
                server->close();
            }
            const bool current = row.question == "current";
            const bool failed = row.question.isEmpty();
            DialogDriver driver;
            if (!current) {
                driver.answerBox(failed ? QMessageBox::Ok : QMessageBox::No);
            }
            about dialog;
            dialog.show();
            QTRY_COMPARE_WITH_TIMEOUT(driver.boxes().size(), current ? 0 : 1, 30000);
            QTRY_COMPARE_WITH_TIMEOUT(dialog.ui->pushButton_3->text(),
                                      QString(current ? "已是最新版本" : "檢查更新..."), 30000);
            QVERIFY(driver.done() && dialog.isVisible());
            QVERIFY(row.status.isEmpty() || server->requests == QByteArrayList{"GET /version HTTP/1.1"});
            if (!current) {
                const DialogDriver::Box box = driver.boxes().first();
                QCOMPARE(box.title, row.question);
                QCOMPARE(box.text, failed ? QString("<font color='white'>無法連線至更新伺服器</font>")
                                          : "<font color='white'>是否更新？<br>" + row.note + "</font>");
                QVERIFY(failed || box.defaultButton == QMessageBox::Yes);
            }
        }
    }

    void acceptedUpdateEndsWithOne()
    {
#ifdef Q_OS_UNIX
        QVERIFY(put("updater.exe", "#!/bin/sh\necho \"$#\" > updated.part && mv updated.part updated\n"));
        QVERIFY(QFile::setPermissions("updater.exe", QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
#endif
        server->answer("4\n");
        about dialog;
        DialogDriver driver;
        driver.overlook(&dialog);
        driver.answerBox(QMessageBox::Yes);
        QCOMPARE(dialog.exec(), 1);
        QVERIFY(!dialog.isVisible());
        QCOMPARE(dialog.loadPath, QString());
#ifdef Q_OS_UNIX
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists("updated"), 30000);
        QCOMPARE(contentOf("updated"), QByteArray("0\n")); // no arguments
#endif
    }

    void silentServerHoldsNothingBack()
    {
        const int unanswered = about::unansweredChecks();
        server->response.clear();
        {
            DialogDriver driver;
            about dialog;
            const QNetworkAccessManager *first = dialog.networkManager;
            dialog.ui->pushButton_3->click(); // a second check beside the first
            QVERIFY(dialog.networkManager != first);
            QTRY_COMPARE(server->requests.size(), 2);
            server->answer("3.104");
            dialog.ui->pushButton_3->click(); // and a third, which is answered
            QTRY_COMPARE(about::unansweredChecks(), unanswered + 2);
            driver.answerWith([&dialog](QDialog *) { dialog.ui->pushButton0->click(); });
            QCOMPARE(dialog.exec(), 0);
            QVERIFY(driver.done() && driver.boxes().isEmpty());
        }
        QCOMPARE(about::unansweredChecks(), unanswered + 2);
    }

private:
    QScopedPointer<TestEnv> env;
    QScopedPointer<HttpServer> server;
};

QTEST_MAIN(TestAbout)
#include "test_about.moc"
