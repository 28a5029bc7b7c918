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

const QString upToDate = QStringLiteral("已是最新版本");
const QString unreachable = QStringLiteral("<font color='white'>無法連線至更新伺服器</font>");

} // namespace

class TestAbout : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void showsVersionAndLastProject();
    void buttonsEndTheDialog_data();
    void buttonsEndTheDialog();
    void loadButtonStaysWithoutAFile();
    void currentVersionNeedsNoUpdate_data();
    void currentVersionNeedsNoUpdate();
    void failedCheckTellsSo_data();
    void failedCheckTellsSo();
    void unreachableServerTellsSo();
    void newerVersionAsks_data();
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
    qputenv("GLOWSMITH_UPDATE_URL", server->url());
}

void TestAbout::cleanup()
{
    server.reset();
    env.reset();
}

void TestAbout::showsVersionAndLastProject()
{
    server->answer("3.104");
    {
        const about dialog;
        QCOMPARE(dialog.ui->label_3->text(), QStringLiteral("Glowsmith ver3.104"));
        QVERIFY(dialog.ui->load_current->isHidden());
        QCOMPARE(dialog.ui->pushButton0->shortcut(), QKeySequence(Qt::Key_Return));
    }
    env->setValue(QStringLiteral("main/currentfile"), QStringLiteral("/gone/a show.gsw3"));
    const about dialog;
    QVERIFY(!dialog.ui->load_current->isHidden());
    QCOMPARE(dialog.ui->load_current->text(), QStringLiteral("/gone/a show.gsw3"));
}

void TestAbout::buttonsEndTheDialog_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("loadPath");
    QTest::newRow("new show") << QStringLiteral("pushButton0") << QString();
    QTest::newRow("last project") << QStringLiteral("load_current") << QStringLiteral("/gone/a show.gsw3");
    QTest::newRow("window closed") << QString() << QString();
}

void TestAbout::buttonsEndTheDialog()
{
    QFETCH(const QString, button);
    QFETCH(const QString, loadPath);
    server->answer("3.104");
    env->setValue(QStringLiteral("main/currentfile"), QStringLiteral("/gone/a show.gsw3"));
    about dialog;
    DialogDriver driver;
    driver.answerWith([&button](QDialog *shown) {
        if (button.isEmpty()) {
            shown->close();
        } else {
            shown->findChild<QPushButton *>(button)->click();
        }
    });
    QCOMPARE(dialog.exec(), 0);
    QVERIFY(driver.done());
    QCOMPARE(dialog.loadPath, loadPath);
}

void TestAbout::loadButtonStaysWithoutAFile()
{
    server->answer("3.104");
    const QString show = env->path(QStringLiteral("home/Documents/show.gsw3"));
    QFile file(show);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();

    about dialog;
    dialog.show();
    DialogDriver driver;
    driver.answerFile({});
    dialog.ui->load_button->click();
    QVERIFY(dialog.isVisible());
    QCOMPARE(driver.files().first().title, QStringLiteral("讀檔"));
    QCOMPARE(driver.files().first().directory, env->path(QStringLiteral("home/Documents")));
    QCOMPARE(driver.files().first().filters, QStringList(QStringLiteral("*.gsw *.gsw3")));

    driver.answerFile({show});
    dialog.ui->load_button->click();
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.loadPath, show);
    QCOMPARE(dialog.result(), 0);
    QVERIFY(driver.done());
}

void TestAbout::currentVersionNeedsNoUpdate_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("equal") << QByteArray("3.104");
    QTest::newRow("older") << QByteArray("3.1039\nnote;;x");
    QTest::newRow("no number") << QByteArray("soon\nnote");
    QTest::newRow("dotted pair") << QByteArray("3.104.1\n");
}

void TestAbout::currentVersionNeedsNoUpdate()
{
    QFETCH(const QByteArray, body);
    server->answer(body);
    DialogDriver driver;
    const about dialog;
    QTRY_COMPARE(dialog.ui->pushButton_3->text(), upToDate);
    QVERIFY(driver.done());
    QVERIFY(driver.boxes().isEmpty());
    QCOMPARE(server->requests, QByteArrayList{"GET /version HTTP/1.1"});
}

void TestAbout::failedCheckTellsSo_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QByteArray>("status");
    QTest::addColumn<bool>("endless");
    QTest::newRow("empty body") << QByteArray() << QByteArray("200 OK") << false;
    QTest::newRow("page not found") << QByteArray("4.0\nnote") << QByteArray("404 Not Found") << false;
    QTest::newRow("server error") << QByteArray("4.0\nnote") << QByteArray("500 Internal Server Error") << false;
    QTest::newRow("elsewhere") << QByteArray("4.0\nnote") << QByteArray("302 Found") << false;
    QTest::newRow("never ends") << QByteArray("4.0\nnote") << QByteArray("200 OK") << true;
}

void TestAbout::failedCheckTellsSo()
{
    QFETCH(const QByteArray, body);
    QFETCH(const QByteArray, status);
    QFETCH(const bool, endless);
    server->answer(body, status);
    server->endless = endless;
    DialogDriver driver;
    driver.answerBox(QMessageBox::Ok);
    const about dialog;
    const QString before = dialog.ui->pushButton_3->text();
    QTRY_VERIFY_WITH_TIMEOUT(driver.done(), 20000);
    QCOMPARE(driver.boxes().size(), 1);
    QCOMPARE(driver.boxes().first().title, QString());
    QCOMPARE(driver.boxes().first().text, unreachable);
    QCOMPARE(dialog.ui->pushButton_3->text(), before);
}

void TestAbout::unreachableServerTellsSo()
{
    server->close();
    DialogDriver driver;
    driver.answerBox(QMessageBox::Ok);
    const about dialog;
    QTRY_VERIFY(driver.done());
    QCOMPARE(driver.boxes().first().text, unreachable);
}

void TestAbout::newerVersionAsks_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("note");
    QTest::newRow("with a note") << QByteArray("3.2\n<b>新</b>;;rest") << QStringLiteral("有更新 最新版為ver3.2\n")
                                 << QStringLiteral("<b>新</b>");
    QTest::newRow("without") << QByteArray("3.1041") << QStringLiteral("有更新 最新版為ver3.1041") << QString();
}

void TestAbout::newerVersionAsks()
{
    QFETCH(const QByteArray, body);
    QFETCH(const QString, title);
    QFETCH(const QString, note);
    server->answer(body);
    DialogDriver driver;
    driver.answerBox(QMessageBox::No);
    about dialog;
    dialog.show();
    QTRY_VERIFY(driver.done());
    const DialogDriver::Box box = driver.boxes().first();
    QCOMPARE(box.title, title);
    QCOMPARE(box.text, QStringLiteral("<font color='white'>是否更新？<br>%1</font>").arg(note));
    QCOMPARE(box.buttons, QMessageBox::Yes | QMessageBox::No);
    QCOMPARE(box.defaultButton, QMessageBox::Yes);
    QVERIFY(dialog.isVisible());
    QVERIFY(dialog.ui->pushButton_3->text() != upToDate);
}

void TestAbout::acceptedUpdateEndsWithOne()
{
#ifdef Q_OS_UNIX
    QFile updater(QStringLiteral("updater.exe"));
    QVERIFY(updater.open(QIODevice::WriteOnly));
    updater.write("#!/bin/sh\necho \"$#\" > updated.part && mv updated.part updated\n");
    updater.close();
    QVERIFY(updater.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
#endif
    server->answer("4\n");
    about dialog;
    QTimer yes;
    connect(&yes, &QTimer::timeout, &dialog, [] {
        if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
            box->button(QMessageBox::Yes)->click();
        }
    });
    yes.start(5);
    QCOMPARE(dialog.exec(), 1);
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.loadPath, QString());
#ifdef Q_OS_UNIX
    QTRY_VERIFY(QFile::exists(QStringLiteral("updated")));
    QFile updated(QStringLiteral("updated"));
    QVERIFY(updated.open(QIODevice::ReadOnly));
    QCOMPARE(updated.readAll().trimmed(), QByteArray("0"));
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
    QElapsedTimer watch;
    watch.start();
    {
        DialogDriver driver;
        about dialog;
        dialog.ui->pushButton_3->click(); // a second check beside the first
        QTRY_COMPARE(server->requests.size(), 2);
        driver.answerWith(
            [](QDialog *shown) { shown->findChild<QPushButton *>(QStringLiteral("pushButton0"))->click(); });
        QCOMPARE(dialog.exec(), 0);
        QVERIFY(driver.done());
        QVERIFY(driver.boxes().isEmpty());
    }
    QCOMPARE(about::unansweredChecks(), unanswered + 2);
    QVERIFY2(watch.elapsed() < 20000, "the dialog waited for the server");
}

QTEST_MAIN(TestAbout)
#include "test_about.moc"
