// The start dialog: what its buttons give, and the version check in all its outcomes against a local server.
#include "httpserver.h"
#include "library/about.h"
#include "support/dialogdriver.h"
#include "support/testenv.h"
#include "ui_about.h"

#include <QDir>
#include <QElapsedTimer>
#include <QNetworkAccessManager>
#include <QtTest>

namespace {

const QString upToDate = "已是最新版本";
const QString lastShow = "/gone/a show.gsw3";

} // namespace

class TestAbout : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void buttonsEndTheDialog_data();
    void buttonsEndTheDialog();
    void loadButtonStaysWithoutAFile();
    void checkAnswers_data();
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

void TestAbout::buttonsEndTheDialog_data()
{
    QTest::addColumn<QString>("last");
    QTest::addColumn<QString>("way");
    QTest::addColumn<QString>("loadPath");
    QTest::newRow("new show") << QString() << "pushButton0" << QString();
    QTest::newRow("last project") << lastShow << "load_current" << lastShow;
    QTest::newRow("window closed") << lastShow << "close" << QString();
    QTest::newRow("return, wherever the focus is") << lastShow << "return" << QString();
}

void TestAbout::buttonsEndTheDialog()
{
    QFETCH(const QString, last);
    QFETCH(const QString, way);
    QFETCH(const QString, loadPath);
    if (!last.isEmpty())
        env->setValue("main/currentfile", last);
    about dialog;
    QCOMPARE(dialog.ui->label_3->text(), QString("Glowsmith ver3.104"));
    QCOMPARE(dialog.ui->load_current->isHidden(), last.isEmpty());
    QCOMPARE(dialog.ui->load_current->text(), last);
    DialogDriver driver;
    driver.overlook(&dialog);
    QTimer::singleShot(0, &dialog, [&] {
        if (way == "close") {
            dialog.close();
        } else if (way == "return") {
            dialog.activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(&dialog));
            dialog.ui->pushButton_2->setFocus();
            QTest::keyClick(dialog.ui->pushButton_2, Qt::Key_Return);
        } else {
            dialog.findChild<QPushButton *>(way)->click();
        }
    });
    QCOMPARE(dialog.exec(), 0);
    QVERIFY(driver.done());
    QCOMPARE(dialog.loadPath, loadPath);
}

void TestAbout::loadButtonStaysWithoutAFile()
{
    const QString show = env->path("home/Documents/show.gsw3");
    QFile file(show);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();

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

void TestAbout::checkAnswers_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QByteArray>("status"); // empty: nobody listens; "endless": the body never ends
    QTest::addColumn<bool>("succeeds");
    const auto row = [](const char *name, const char *body, const char *status, bool succeeds) {
        QTest::newRow(name) << QByteArray(body) << QByteArray(status) << succeeds;
    };
    row("equal", "3.104", "200 OK", true);
    row("older", "3.1039\nnote;;x", "200 OK", true);
    row("no number", "soon\nnote", "200 OK", true);
    row("dotted pair", "3.104.1\n", "200 OK", true);
    row("blank first line", "\n9.9", "200 OK", true);
    row("empty body", "", "200 OK", false);
    row("page not found", "4.0\nnote", "404 Not Found", false);
    row("server error", "4.0\nnote", "500 Internal Server Error", false);
    row("elsewhere", "4.0\nnote", "302 Found", false);
    row("never ends", "4.0\nnote", "endless", false);
    row("unreachable", "", "", false);
}

void TestAbout::checkAnswers()
{
    QFETCH(const QByteArray, body);
    QFETCH(const QByteArray, status);
    QFETCH(const bool, succeeds);
    server->endless = status == "endless";
    server->answer(body, server->endless ? "200 OK" : status);
    if (status.isEmpty())
        server->close();
    DialogDriver driver;
    if (!succeeds)
        driver.answerBox(QMessageBox::Ok);
    const about dialog;
    if (succeeds) {
        QTRY_COMPARE_WITH_TIMEOUT(dialog.ui->pushButton_3->text(), upToDate, 30000);
        QCOMPARE(server->requests, QByteArrayList{"GET /version HTTP/1.1"});
        QVERIFY(driver.boxes().isEmpty());
    } else {
        QTRY_COMPARE_WITH_TIMEOUT(driver.boxes().size(), 1, 30000);
        QCOMPARE(driver.boxes().first().title, QString());
        QCOMPARE(driver.boxes().first().text, QString("<font color='white'>無法連線至更新伺服器</font>"));
        QCOMPARE(dialog.ui->pushButton_3->text(), QString("檢查更新..."));
    }
    QVERIFY(driver.done());
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
        QCOMPARE(dialog.ui->pushButton_3->text(), QString("檢查更新..."));
    }
}

void TestAbout::acceptedUpdateEndsWithOne()
{
#ifdef Q_OS_UNIX
    QFile updater("updater.exe");
    QVERIFY(updater.open(QIODevice::WriteOnly));
    updater.write("#!/bin/sh\necho \"$#\" > updated.part && mv updated.part updated\n");
    updater.close();
    QVERIFY(updater.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
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
    QFile updated("updated");
    QVERIFY(updated.open(QIODevice::ReadOnly));
    QCOMPARE(updated.readAll().trimmed(), QByteArray("0")); // no arguments
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
