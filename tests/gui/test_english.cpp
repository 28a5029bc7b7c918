// The complete English: no word of another script in any window or dialog, and how a user comes to it.
#include "app/mainwindow.h"
#include "device/pass.h"
#include "device/setup.h"
#include "library/about.h"
#include "render/screencapture.h"
#include "show/base/languages.h"
#include "support/windowtest.h"

#include <QFontComboBox>
#include <QMetaProperty>

namespace {

// All that an object may show or speak, but for names that only the program sees.
QStringList textsOf(const QObject &object)
{
    QStringList texts;
    const QMetaObject &type = *object.metaObject();
    for (int i = 0; i < type.propertyCount(); ++i) {
        const QMetaProperty property = type.property(i);
        const QByteArray name = property.name();
        if (property.type() == QVariant::String && name != "styleSheet" && name != "objectName") {
            texts << property.read(&object).toString();
        }
    }
    if (const auto *box = qobject_cast<const QComboBox *>(&object)) {
        for (int i = 0; i < box->count() && qobject_cast<const QFontComboBox *>(box) == nullptr; ++i) {
            texts << box->itemText(i) << box->itemData(i, Qt::ToolTipRole).toString();
        }
    }
    if (const auto *tabs = qobject_cast<const QTabWidget *>(&object)) {
        for (int i = 0; i < tabs->count(); ++i) {
            texts << tabs->tabText(i) << tabs->tabToolTip(i);
        }
    }
    return texts;
}

// The first text that an English reader cannot read, empty if there is none. How many texts there were goes into count.
QString unreadable(const QObject &top, int &count)
{
    static const QRegularExpression chinese(
        "[\\x{2e80}-\\x{9fff}\\x{f900}-\\x{faff}\\x{fe30}-\\x{fe4f}\\x{ff00}-\\x{ffef}]");
    QList<const QObject *> all{&top};
    for (const QObject *child : top.findChildren<QObject *>()) {
        if (child->isWidgetType() || qobject_cast<const QAction *>(child) != nullptr) {
            all << child;
        }
    }
    for (const QObject *object : qAsConst(all)) {
        for (const QString &text : textsOf(*object)) {
            count += text.isEmpty() ? 0 : 1;
            if (text.contains(chinese)) {
                return QString("%1 %2: %3").arg(object->metaObject()->className(), object->objectName(), text);
            }
        }
    }
    return {};
}

} // namespace

class TestEnglish : public WindowTest
{
    Q_OBJECT

private slots:
    void everyWindowCanBeRead()
    {
        int count = 0;
        QVERIFY(!unreadable(*window, count).isEmpty()); // in Chinese; or this would see nothing
        glow::Languages languages;
        languages.speak(AppSettings::CompleteEnglish);
        cleanup();
        init();
        add(patternBlob("1?#ff0000", 0));
        window->on_timeline_add_clicked();
        about start;
        setup terminal(nullptr);
        Pass lock;
        ScreenCapture capture(window.data());
        count = 0;
        for (const QObject *top : QList<const QObject *>{window.data(), &start, &terminal, &lock, &capture}) {
            QCOMPARE(unreadable(*top, count), QString());
        }
        QVERIFY2(count > 400, qPrintable(QString::number(count)));
    }

    void theMenuKeepsIt()
    {
        DialogDriver driver;
        driver.answerBox(QMessageBox::Ok);
        ui->actionCompleteEnglish->trigger();
        QVERIFY(driver.done());
        QCOMPARE(driver.boxes().at(0).text, QString("Change after restart."));
        QCOMPARE(env->value("main/language").toInt(), 3);
        window.reset();
        window.reset(new MainWindow);
        QVERIFY(window->ui->actionCompleteEnglish->isChecked());
        ui = window->ui;
    }

    // What the start dialog offers to those whose system does not speak Chinese.
    void theStartDialogTurnsAtOnce()
    {
        glow::Languages languages;
        languages.speak(AppSettings::NeverChosen);
        about start;
        const QSize size = start.sizeHint();
        start.offerEnglish([&] { languages.speak(AppSettings::CompleteEnglish); });
        QCOMPARE(start.sizeHint(), size);
        int count = 0;
        QVERIFY(!unreadable(start, count).isEmpty());
        auto *line = start.findChild<QPushButton *>("choose_english");
        line->click();
        QCOMPARE(unreadable(start, count), QString());
        QVERIFY(line->isHidden());
        QCOMPARE(start.findChild<QLabel *>("label_3")->text(), QString("Glowsmith ver3.104"));
    }
};

QTEST_MAIN(TestEnglish)
#include "test_english.moc"
