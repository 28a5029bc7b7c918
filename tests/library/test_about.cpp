// The start dialog: what its buttons give, and the version check in all its outcomes against a local server.
#include "httpserver.h"
#include "library/about.h"
#include "support/dialogdriver.h"
#include "support/samples.h"
#include "support/testenv.h"
#include "ui_about.h"

#include <QElapsedTimer>
#include <QNetworkAccessManager>
#include <QtTest>

namespace {

const QString upToDate = "已是最新版本";
const QString notAsked = "檢查更新...";

} // namespace

class TestAbout : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void buttonsEndTheDialog();
    void loadButtonStaysWithoutAFile();
    void checkAnswers();
    void newerVersionAsks();
    void acceptedUpdateEndsWithOne();
    void checkCanBeRepeated();
    void silentServerHoldsNothingBack();

private:
    QScopedPointer<TestEnv> env;
    QScopedPointer<HttpServer> server;
};

void TestAbout::init()
{
    env.reset(new TestEnv);
    server.reset(new HttpServer);
    QVERIFY(server->isListening());
    server->answer("3.104");
    qputenv("GLOWSMITH_UPDATE_URL", server->url());
}

void TestAbout::cleanup()
{
    server.reset();
    env.reset();
}

void TestAbout::buttonsEndTheDialog()
{
    const QString show = "/gone/a show.gsw3";
    const struct
    {
        QString way; // a button, or another way to end it
        QString last;
        QString loadPath;
    } rows[] = {{"pushButton0", "", ""}, {"load_current", show, show}, {"close", show, ""}, {"return", show, ""}};
    for (const auto &row : rows) {
        if (!row.last.isEmpty()) {
            env->setValue("main/currentfile", row.last);
        }
        about dialog;
        QCOMPARE(dialog.ui->label_3->text(), QString("Glowsmith ver3.104"));
        QCOMPARE(dialog.ui->load_current->isHidden(), row.last.isEmpty());
        QCOMPARE(dialog.ui->load_current->text(), row.last);
        DialogDriver driver;
        driver.overlook(&dialog);
        QTimer::singleShot(0, &dialog, [&] {
            if (row.way == "close") {
                dialog.close();
            } else if (row.way == "return") {
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

void TestAbout::loadButtonStaysWithoutAFile()
{
    const QString show = env->path("home/Documents/show.gsw3");
    QVERIFY(put(show));
    about dialog;
    dialog.show();
    DialogDriver driver;
    driver.answerFile({});
    dialog.ui->load_button->click();
    QVERIFY(dialog.isVisible());
    QCOMPARE(driver.files().first().title, QString("讀檔"));
    QCOMPARE(driver.files().first().directory, env->path("home/Documents"));
    QCOMPARE(driver.files().first().filters, QStringList("*.gsw *.gsw3"));

    driver.answerFile({show});
    dialog.ui->load_button->click();
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.loadPath, show);
    QCOMPARE(dialog.result(), 0);
    QVERIFY(driver.done());
}

void TestAbout::checkAnswers()
{
    const struct
    {
        const char *body;
        QByteArray status; // empty: nobody listens; "endless": the body never ends
        bool succeeds;
    } rows[] = {{"3.104", "200 OK", true},
                {"3.1039\nolder;;x", "200 OK", true},
                {"no number\nnote", "200 OK", true},
                {"3.104.1\n", "200 OK", true},
                {"\n9.9", "200 OK", true},
                {"", "200 OK", false},
                {"4.0\nnote", "404 Not Found", false},
                {"4.0\nnote", "500 Internal Server Error", false},
                {"4.0\nnote", "302 Found", false},
                {"4.0\nnote", "endless", false},
                {"", "", false}};
    for (const auto &row : rows) {
        server->requests.clear();
        server->endless = row.status == "endless";
        server->answer(row.body, server->endless ? "200 OK" : row.status);
        if (row.status.isEmpty()) {
            server->close();
        }
        DialogDriver driver;
        if (!row.succeeds) {
            driver.answerBox(QMessageBox::Ok);
        }
        const about dialog;
        if (row.succeeds) {
            QTRY_COMPARE_WITH_TIMEOUT(dialog.ui->pushButton_3->text(), upToDate, 30000);
            QCOMPARE(server->requests, QByteArrayList{"GET /version HTTP/1.1"});
        } else {
            QTRY_COMPARE_WITH_TIMEOUT(driver.boxes().size(), 1, 30000);
            QCOMPARE(driver.boxes().first().title, QString());
            QCOMPARE(driver.boxes().first().text, QString("<font color='white'>無法連線至更新伺服器</font>"));
            QCOMPARE(dialog.ui->pushButton_3->text(), notAsked);
        }
        QVERIFY(driver.done());
    }
}

void TestAbout::newerVersionAsks()
{
    const struct
    {
        const char *body;
        QString title;
        QString note;
    } answers[] = {
        {"3.2\n<b>新</b>;;rest", "有更新 最新版為ver3.2\n", "<b>新</b>"},
        {"3.1041", "有更新 最新版為ver3.1041", ""},
    };
    for (const auto &answer : answers) {
        server->answer(answer.body);
        DialogDriver driver;
        driver.answerBox(QMessageBox::No);
        about dialog;
        dialog.show();
        QTRY_VERIFY(driver.done());
        const DialogDriver::Box box = driver.boxes().first();
        QCOMPARE(box.title, answer.title);
        QCOMPARE(box.text, "<font color='white'>是否更新？<br>" + answer.note + "</font>");
        QCOMPARE(box.buttons, QMessageBox::Yes | QMessageBox::No);
        QCOMPARE(box.defaultButton, QMessageBox::Yes);
        QVERIFY(dialog.isVisible());
        QCOMPARE(dialog.ui->pushButton_3->text(), notAsked);
    }
}

void TestAbout::acceptedUpdateEndsWithOne()
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

void TestAbout::checkCanBeRepeated()
{
    const int unanswered = about::unansweredChecks();
    server->answer(QByteArray(), "503 Service Unavailable");
    DialogDriver driver;
    driver.answerBox(QMessageBox::Ok);
    about dialog;
    QTRY_VERIFY(driver.done());
    const QNetworkAccessManager *first = dialog.networkManager;
    server->answer("3.104");
    dialog.ui->pushButton_3->click();
    QVERIFY(dialog.networkManager != first);
    QTRY_COMPARE(dialog.ui->pushButton_3->text(), upToDate);
    QCOMPARE(server->requests.size(), 2);
    QCOMPARE(about::unansweredChecks(), unanswered);
}

void TestAbout::silentServerHoldsNothingBack()
{
    const int unanswered = about::unansweredChecks();
    server->response.clear();
    QElapsedTimer watch;
    watch.start();
    {
        DialogDriver driver;
        about dialog;
        dialog.ui->pushButton_3->click(); // a second check beside the first
        QTRY_COMPARE(server->requests.size(), 2);
        driver.answerWith([&dialog](QDialog *) { dialog.ui->pushButton0->click(); });
        QCOMPARE(dialog.exec(), 0);
        QVERIFY(driver.done());
        QVERIFY(driver.boxes().isEmpty());
    }
    QCOMPARE(about::unansweredChecks(), unanswered + 2);
    QVERIFY2(watch.elapsed() < 20000, "the dialog waited for the server");
}

QTEST_MAIN(TestAbout)
#include "test_about.moc"
