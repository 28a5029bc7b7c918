// Lost pictures: which are, where they are found, the window's and the editor's questions, and the picture library.
#include "show/model/missingpictures.h"
#include "show/model/settingstext.h"
#include "support/windowtest.h"

#include <QFileDialog>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

class TestRelink : public WindowTest
{
    Q_OBJECT

private slots:
    void findsPicturesByPartOfTheirName()
    {
        const QString root = env->path("root");
        for (const char *file : {"/one/two/three/data.png.bak", "/one/Deep.png", "/one/shot.gif/inside.txt"}) {
            QVERIFY(put(root + file));
        }
        QCOMPARE(glow::findPicture(root, "a.png"), root + "/one/two/three/data.png.bak");
        // Case counts, a folder is no picture, and only the name is looked at; an empty one is found nowhere.
        for (const char *name : {"deep.png", "shot.gif", "two/three", ""}) {
            QCOMPARE(glow::findPicture(root, name), QString());
        }
        // A relative folder still gives an absolute path.
        QCOMPARE(glow::findPicture(QDir::current().relativeFilePath(root + "/one"), "Deep"), root + "/one/Deep.png");
        QCOMPARE(glow::lostPictureName("0?1?C:\\art\\a.png?0|0|0"), QString("C:\\art\\a.png"));
    }

    void lostIsWhatNamesAFileThatIsGone()
    {
        const QString here = picture("a.png");
        // Of a path only what stands before the "|" counts.
        for (const QString &text : {"0?1?" + here + "?0|0|0", "0?1?" + here + "|gone.png?0|0|0",
                                    QString("2?1?/gone/b.png|#000000|x|0|0?5|0|0"), QString("3?2?/gone?0|1|0"),
                                    QString("1?#ff0000"), QString("0?1"), QString("0"), QString()}) {
            QVERIFY2(!glow::isPictureLost(text), qPrintable(text));
        }
        QVERIFY(glow::isPictureLost("0?1?" + here + "x?0|0|0") && glow::isPictureLost("0?1??0|0|0"));
    }

    void relinksThroughNestedFolders()
    {
        const QString kept = picture("kept.png");
        const QString deepA = picture("found/1/2/3/a.png");
        const QString deepB = picture("found/4/my b.png");
        const QString elsewhere = picture("other/c.png");
        QVector<const TimelineItem *> items = {addPicture(lost("a.png"), 0), addPicture(kept, 1000)};
        window->on_timeline_add_clicked();
        for (const char *name : {"b.png", "a.png", "c.png", "d.png"}) {
            items << addPicture(lost(name), items.size() * 1000);
        }
        window->updateStatus();
        const QImage thumbnail = items.first()->thumbnail.toImage();

        // As long as something is lost and the user has folders to try, the question comes again with what is left.
        DialogDriver driver;
        for (const char *folder : {"found", "other"}) {
            driver.answerBox(QMessageBox::Yes);
            driver.answerFile({env->path(folder)});
        }
        driver.answerBox(QMessageBox::No);
        QCOMPARE(window->scanMissingPictures(), 0);
        QVERIFY2(driver.done(), qPrintable(driver.unexpected.join(' ')));
        QStringList paths;
        for (const DialogDriver::Box &box : driver.boxes()) {
            QVERIFY(box.text.endsWith("張圖片遺失，是否搜尋並取代遺失圖片？") && box.defaultButton == QMessageBox::Yes);
            paths << box.text.left(1);
        }
        for (const TimelineItem *item : items) {
            paths << pathOf(item);
        }
        QCOMPARE(paths, (QStringList{"5", "2", "1", deepA, kept, deepB, deepA, elsewhere, lost("d.png")}));
        QVERIFY(items.first()->thumbnail.toImage() == thumbnail && window->history.index == 2);

        // The dialog shows files too; cancelled, it ends the search. With the last one found nothing is asked.
        driver.answerWith([](QDialog *dialog) {
            const auto *question = qobject_cast<QFileDialog *>(dialog);
            QVERIFY(question != nullptr && !question->testOption(QFileDialog::ShowDirsOnly));
            dialog->reject();
        });
        window->on_actionDIR_triggered();
        QCOMPARE(pathOf(items.last()), lost("d.png"));
        picture("last/d.png");
        driver.answerFile({env->path("last")});
        window->on_actionDIR_triggered();
        QVERIFY(driver.done() && driver.boxes().size() == 3);
        QCOMPARE(window->scanMissingPictures(), 1);
    }

    void editorAsksForAReplacement()
    {
        const QString old = picture("old.png", Qt::blue);
        const QString fresh = picture("fresh.png", Qt::yellow);
        window->picload(old);
        TimelineItem *item = addPicture(lost("a.png"), 0);
        const QByteArray blob = item->itemData;

        // Refused, then no file chosen, then one.
        for (int round = 0; round < 3; ++round) {
            DialogDriver driver;
            driver.answerBox(round == 0 ? QMessageBox::No : QMessageBox::Yes);
            if (round > 0) {
                driver.answerFile(round == 1 ? QStringList() : QStringList(fresh));
            }
            window->loadItemToEditor(item);
            QVERIFY2(driver.done(), qPrintable(driver.unexpected.join(' ')));
            QCOMPARE(ui->PicDir->text(), round < 2 ? old : fresh);
            QCOMPARE(item->itemData, blob); // until the edit is applied
        }
        window->on_Add_Button_clicked();
        QCOMPARE(pathOf(item), fresh);
        QCOMPARE(item->thumbnail.toImage().pixelColor(5, 40), QColor(Qt::yellow));
    }

    void gathersThePictures()
    {
        const QString folder = env->path("gathered");
        QVERIFY(QDir().mkpath(folder));
        add(patternBlob(QString("2?1?%1|#000000|x|0|0?5|0|0").arg(picture("two/text.png")), 2000));
        addPicture(picture("one/same.png", Qt::red), 3000);
        addPicture(lost("gone.png"), 4000);
#ifdef Q_OS_UNIX
        // Reading a pipe that nobody fills would never end.
        const QString pipe = env->path("pipe.png");
        QCOMPARE(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        addPicture(pipe, 5000);
#endif
        window->on_timeline_add_clicked();
        addPicture(picture("two/same.png", Qt::blue), 0);
        addPicture(picture("two/other.png"), 1000);
        DialogDriver driver;
        driver.answerFile({});
        window->on_actionSQL_triggered();
        QVERIFY(driver.done() && QDir(folder).isEmpty());
        driver.answerFile({folder});
        driver.answerBox(QMessageBox::Ok);
        window->on_actionSQL_triggered();
        QVERIFY2(driver.done(), qPrintable(driver.unexpected.join(' ')));
        QCOMPARE(QDir(folder).entryList(QDir::Files, QDir::Name), (QStringList{"other.png", "same.png"}));
        QCOMPARE(QImage(folder + "/same.png").pixelColor(0, 0), QColor(Qt::red));
    }

private:
    QString picture(const QString &name, const QColor &colour = Qt::red)
    {
        const QString path = env->path(name);
        QDir().mkpath(QFileInfo(path).path());
        QImage image(30, 20, QImage::Format_RGB32);
        image.fill(colour);
        return image.save(path, "PNG") ? path : QString();
    }
    QString lost(const QString &name) const
    {
        return env->path("gone/" + name);
    }
    TimelineItem *addPicture(const QString &path, int startMs)
    {
        return add(patternBlob(glow::composeSettings(glow::PictureSettings{path}, 1), startMs));
    }
    static QString pathOf(const TimelineItem *item)
    {
        return glow::sourcePicture(item->settingsText).value_or("none");
    }
};

QTEST_MAIN(TestRelink)
#include "test_relink.moc"
