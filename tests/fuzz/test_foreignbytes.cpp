// Foreign bytes without a fuzzer: the sound inputs of every target, each of them damaged in many places, and every
// former finding (fixtures/TARGET/NAME).
#include "support/samples.h"
#include "support/testenv.h"
#include "targets.h"

#include <QLoggingCategory>
#include <QtTest>

class TestForeignBytes : public QObject
{
    Q_OBJECT

private slots:
    void targetSurvives_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("damaged");
        for (const fuzz::Target *target = fuzz::targets; target->name != nullptr; ++target) {
            const auto sound = fuzz::corpus(target->name);
            for (auto one = sound.begin(); one != sound.end(); ++one) {
                QTest::addRow("%s: %s", target->name, qPrintable(one.key()))
                    << QString(target->name) << one.value() << true;
            }
            const QDir findings(GLOWSMITH_FUZZ_FIXTURES + QString("/") + target->name);
            for (const QString &file : findings.entryList(QDir::Files)) {
                QTest::addRow("%s: %s", target->name, qPrintable(file))
                    << QString(target->name) << contentOf(findings.filePath(file)) << false;
            }
        }
    }

    void targetSurvives()
    {
        QFETCH(const QString, name);
        QFETCH(const QByteArray, bytes);
        QFETCH(const bool, damaged);
        QLoggingCategory::setFilterRules("*.debug=false\n*.warning=false");
        qputenv("GLOWSMITH_PORT_PATTERN", QFile::encodeName(env.path("COM%1")));
        const fuzz::Target *target = fuzz::target(name);
        target->run(bytes);
        // Every place of short inputs, some dozen of long ones: cut there, and with a wrong byte there.
        for (int at = 0; damaged && at < bytes.size(); at += qMax(1, bytes.size() / (name == "window" ? 10 : 40))) {
            target->run(bytes.left(at));
            QByteArray wrong = bytes;
            wrong[at] = char(~wrong.at(at));
            target->run(wrong);
        }
    }

private:
    TestEnv env;
};

QTEST_MAIN(TestForeignBytes)
#include "test_foreignbytes.moc"
