// The manual that F1 opens: which page in which language, and that what its pages name is there.
#include "library/help.h"
#include "show/base/installation.h"
#include "show/base/languages.h"
#include "support/windowtest.h"

#include <QDesktopServices>

class TestHelp : public WindowTest
{
    Q_OBJECT

public slots:
    void browse(const QUrl &url) { opened.append(url.toLocalFile()); }

private slots:
    void initTestCase() { QDesktopServices::setUrlHandler("file", this, "browse"); }
    void cleanupTestCase() { QDesktopServices::unsetUrlHandler("file"); }

    void theLanguageOfTheInterface()
    {
        for (const int language : {AppSettings::Chinese, AppSettings::English, AppSettings::CompleteEnglish}) {
            const QString name = language == AppSettings::Chinese ? "zh-TW" : "en";
            glow::Languages languages;
            languages.speak(language);
            cleanup();
            init();
            opened.clear();
            QTest::keyClick(window.data(), Qt::Key_F1);
            window->findChild<QAction *>("actionKeys")->trigger();
            QCOMPARE(opened, QStringList({glow::manualPage("manual." + name + ".html"),
                                          glow::manualPage("keys." + name + ".html")}));
            const QList<QAction *> entries = ui->menu_2->actions();
            QVERIFY(entries.at(entries.size() - 3)->isSeparator()); // the two are the last
        }
    }

    void whatThePagesNameIsThere()
    {
        QStringList places[2];
        for (const QString language : {"zh-TW", "en"}) {
            const QString path = glow::manualPage("manual." + language + ".html");
            const QString page = QString::fromUtf8(contentOf(path));
            const QDir folder = QFileInfo(path).dir();
            QRegularExpressionMatchIterator all = QRegularExpression("(?:src|href)=\"([^\"]+)\"").globalMatch(page);
            while (all.hasNext()) {
                const QString target = all.next().captured(1);
                const bool within = target.startsWith('#');
                QVERIFY2(within ? page.contains("id=\"" + target.mid(1) + '"') : folder.exists(target),
                         qPrintable(target));
                places[language == "en"] += QString(target).replace('/' + language + '/', "/*/");
            }
            QVERIFY(contentOf(glow::manualPage("keys." + language + ".html")).contains("html#keys\""));
        }
        QVERIFY(places[0].size() > 30);
        places[0].removeOne("manual.en.html"); // each leads to the other
        places[1].removeOne("manual.zh-TW.html");
        QCOMPARE(places[0], places[1]);
    }

    void whatIsNotInstalledIsNamed()
    {
        opened.clear();
        glow::openManual("absent.html", ui->statusBar);
        QVERIFY(opened.isEmpty());
        QVERIFY(ui->statusBar->currentMessage().contains("share/glowsmith/absent.html"));
    }

private:
    QStringList opened;
};

QTEST_MAIN(TestHelp)
#include "test_help.moc"
