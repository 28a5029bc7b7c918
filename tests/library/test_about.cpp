// The start dialog: what its buttons give, and the version check in all its outcomes against a local server.
#include "httpserver.h"
#include "library/about.h"
#include "show/base/updatereply.h"
#include "support/dialogdriver.h"
#include "support/samples.h"
#include "support/testenv.h"
#include "ui_about.h"

#include <QtTest>

class TestAbout : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        env.reset(); // goes back to where it came from
        env.reset(new TestEnv);
        server.reset(new HttpServer);
        QVERIFY(server->isListening());
        server->answer("3.104");
        qputenv("GLOWSMITH_UPDATE_URL", server->url());
    }

    void theReturnKeyMeansANewShow()
    {
        env->setValue("main/currentfile", "/gone/a show.gsw3");
        about dialog;
        QCOMPARE(dialog.ui->label_3->text(), QString("Glowsmith ver3.104"));
        QVERIFY(!dialog.ui->load_current->isHidden());
        QTimer::singleShot(0, &dialog, [&] {
            dialog.activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(&dialog));
            dialog.ui->pushButton_2->setFocus();
            QTest::keyClick(dialog.ui->pushButton_2, Qt::Key_Return);
        });
        QCOMPARE(dialog.exec(), 0);
        QCOMPARE(dialog.loadPath, QString());
    }

    void loadButtonStaysWithoutAFile()
    {
        const QString show = env->path("home/Documents/show.gsw3");
        QVERIFY(put(show));
        about dialog;
        QVERIFY(dialog.ui->load_current->isHidden()); // there is no last show
        dialog.show();
        DialogDriver driver;
        for (const bool chosen : {false, true}) {
            driver.answerFile(chosen ? QStringList(show) : QStringList());
            dialog.ui->load_button->click();
            QCOMPARE(dialog.isVisible(), !chosen);
        }
        QCOMPARE(driver.files().first().directory, env->path("home/Documents"));
        QVERIFY(driver.done() && dialog.loadPath == show && dialog.result() == 0);
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
        // Without a status nobody listens, "endless" is a body without an end. The title of what is asked: "current"
        // where there is no newer version, nothing where the check failed.
        using Case = std::tuple<QByteArray, QByteArray, QString>;
        const int before = about::unansweredChecks(); // those of dialogs that were gone first
        for (const auto &[body, status, title] : {Case{"3.104", "200 OK", "current"},
                                                  {"\n9.9", "200 OK", "current"},
                                                  {"3.1041\nnote", "200 OK", "有更新 最新版為ver3.1041\n"},
                                                  {"", "200 OK", ""},
                                                  {"4.0\nnote", "404 Not Found", ""},
                                                  {"4.0\nnote", "302 Found", ""},
                                                  {"4.0\nnote", "endless", ""},
                                                  {"", "", ""}}) {
            server->requests.clear();
            server->endless = status == "endless";
            server->answer(body, server->endless ? "200 OK" : status);
            if (status.isEmpty()) {
                server->close();
            }
            const bool current = title == "current";
            DialogDriver driver;
            if (!current) {
                driver.answerBox(title.isEmpty() ? QMessageBox::Ok : QMessageBox::No);
            }
            about dialog;
            dialog.show();
            QTRY_COMPARE_WITH_TIMEOUT(driver.boxes().size(), current ? 0 : 1, 30000);
            QTRY_COMPARE_WITH_TIMEOUT(dialog.ui->pushButton_3->text(),
                                      QString(current ? "已是最新版本" : "檢查更新..."), 30000);
            QTRY_VERIFY_WITH_TIMEOUT(driver.done() && about::unansweredChecks() == before, 30000);
            QVERIFY(dialog.isVisible());
            QVERIFY(status.isEmpty() || server->requests == QByteArrayList{"GET /version HTTP/1.1"});
            const DialogDriver::Box box = driver.boxes().value(0);
            QCOMPARE(box.title, current ? QString() : title);
            QVERIFY(current || title.isEmpty() || (box.text.contains("note") && box.defaultButton == QMessageBox::Yes));
        }
    }

    void withoutAnAddressNothingIsAsked()
    {
        qunsetenv("GLOWSMITH_UPDATE_URL");
        const int unanswered = about::unansweredChecks();
        DialogDriver driver;
        about dialog;
        dialog.ui->pushButton_3->click();
        QVERIFY(dialog.networkManager == nullptr && driver.boxes().isEmpty());
        QCOMPARE(dialog.ui->pushButton_3->text(), QString("未設定更新位址"));
        QCOMPARE(about::unansweredChecks(), unanswered);
    }

    void acceptedUpdateEndsWithOne()
    {
        QVERIFY(put("updater.exe", "#!/bin/sh\necho $# > updated\n"));
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

private:
    QScopedPointer<TestEnv> env;
    QScopedPointer<HttpServer> server;
};

QTEST_MAIN(TestAbout)
#include "test_about.moc"
