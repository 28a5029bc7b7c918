// Foreign bytes without a fuzzer: the sound inputs of every target, each of them damaged in many places, and every
// former finding (fixtures/TARGET/NAME).
#include "support/testenv.h"
#include "targets.h"

#include <QDir>
#include <QLoggingCategory>
#include <QtTest>

class TestForeignBytes : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void targetSurvives_data();
    void targetSurvives();

private:
    TestEnv env;
};

void TestForeignBytes::initTestCase()
{
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false\n*.warning=false"));
    qputenv("GLOWSMITH_PORT_PATTERN", QFile::encodeName(env.path(QStringLiteral("COM%1"))));
}

void TestForeignBytes::targetSurvives_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("damaged");
    for (const fuzz::Target *target = fuzz::targets; target->name != nullptr; ++target) {
        const QString name = QString::fromLatin1(target->name);
        const auto sound = fuzz::corpus(name);
        for (auto one = sound.begin(); one != sound.end(); ++one) {
            QTest::addRow("%s: %s", target->name, qPrintable(one.key())) << name << one.value() << true;
        }
        const QDir findings(QStringLiteral(GLOWSMITH_FUZZ_FIXTURES) + u'/' + name);
        const auto files = findings.entryInfoList(QDir::Files);
        for (const QFileInfo &info : files) {
            QFile file(info.filePath());
            QVERIFY(file.open(QIODevice::ReadOnly));
            QTest::addRow("%s: %s", target->name, qPrintable(info.fileName())) << name << file.readAll() << false;
        }
    }
}

void TestForeignBytes::targetSurvives()
{
    QFETCH(const QString, name);
    QFETCH(const QByteArray, bytes);
    QFETCH(const bool, damaged);
    const fuzz::Target *target = fuzz::target(name);
    target->run(bytes);
    // Every place of short inputs, about fifty of long ones: cut there, and with a wrong byte there.
    const int step = damaged ? qMax(1, bytes.size() / (name == QLatin1String("window") ? 10 : 50)) : bytes.size() + 1;
    for (int at = damaged ? 0 : bytes.size(); at < bytes.size(); at += step) {
        target->run(bytes.left(at));
        QByteArray wrong = bytes;
        wrong[at] = char(~wrong.at(at));
        target->run(wrong);
    }
}

QTEST_MAIN(TestForeignBytes)
#include "test_foreignbytes.moc"
