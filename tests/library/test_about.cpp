// The start dialog: what its buttons give, and the version check in all its outcomes against a local server.
#include "httpserver.h"
#include "library/about.h"
#include "show/base/updatereply.h"
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

    void buttonsEndTheDialog()
    {
        const QString show = "/gone/a show.gsw3";
        for (const QString way : {"pushButton0", "load_current", "the return key"}) {
            if (way != "pushButton0") {
                env->setValue("main/currentfile", show);
            }
            about dialog;
            QCOMPARE(dialog.ui->label_3->text(), QString("Glowsmith ver3.104"));
            QCOMPARE(dialog.ui->load_current->isHidden(), way == "pushButton0");
            QTimer::singleShot(0, &dialog, [&] {
                if (auto *button = dialog.findChild<QPushButton *>(way)) {
                    button->click();
                    return;
                }
                dialog.activateWindow();
                QVERIFY(QTest::qWaitForWindowActive(&dialog));
                dialog.ui->pushButton_2->setFocus();
                QTest::keyClick(dialog.ui->pushButton_2, Qt::Key_Return);
            });
            QCOMPARE(dialog.exec(), 0);
            QCOMPARE(dialog.loadPath, way == "load_current" ? show : QString());
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

    void repliesAreReadByTheirFirstLine()
    {
        using Case = std::tuple<QByteArray, double, QString>; // body, version, note
        for (const auto &[body, version, note] : {Case{"3.104", 3.104, ""},
                                                  {"3.1039\nolder;;x", 3.1039, "older"},
                                                  {"3.104.1\n", 0, ""}, // no number
                                                  {"\n9.9", 0, "9.9"},
                                                  {"3.2\r\n<b>新</b>\n&amp;好;;more;;", 3.2, "<b>新</b>\n&amp;好"}}) {
            const glow::UpdateReply reply = glow::parseUpdateReply(body);
            QCOMPARE(reply.version, version);
            QCOMPARE(reply.note, note);
        }
    }

    void checkAnswers()
    {
        const struct
        {
            const char *body;
            QByteArray status; // empty: nobody listens; "endless": the body never ends
            QString question;  // the title of the offer; "current": there is no newer version; empty: the check failed
        } rows[] = {{"3.104", "200 OK", "current"},
                    {"\n9.9", "200 OK", "current"},
                    {"3.1041\nnote", "200 OK", "有更新 最新版為ver3.1041\n"},
                    {"", "200 OK", ""},
                    {"4.0\nnote", "404 Not Found", ""},
                    {"4.0\nnote", "302 Found", ""},
                    {"4.0\nnote", "endless", ""},
                    {"", "", ""}};
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
                QVERIFY(failed || (box.text.contains("note") && box.defaultButton == QMessageBox::Yes));
            }
        }
    }

    void acceptedUpdateEndsWithOne()
    {
        QVERIFY(put("updater.exe", "#!/bin/sh\necho \"$#\" > updated.part && mv updated.part updated\n"));
        QVERIFY(QFile::setPermissions("updater.exe", QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        server->answer("4\n");
        about dialog;
        DialogDriver driver;
        driver.overlook(&dialog);
        driver.answerBox(QMessageBox::Yes);
        QCOMPARE(dialog.exec(), 1);
        QVERIFY(!dialog.isVisible() && dialog.loadPath.isEmpty());
#ifdef Q_OS_UNIX
        QTRY_COMPARE_WITH_TIMEOUT(contentOf("updated"), QByteArray("0\n"), 30000); // no arguments
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
