// Answers the modal dialogs that the code under test opens, as a user would, in the order in which they appear.
//
//   DialogDriver driver;
//   driver.answerBox(QMessageBox::Yes);          // the next message box
//   driver.answerFile(QStringList{"/a.png"});    // the next file dialog; an empty list cancels it
//   window.on_actionLoad_triggered();
//   QCOMPARE(driver.boxes().at(0).text, ...);
//   QVERIFY(driver.done());
//
// A dialog that nobody expected is recorded and cancelled, so that a test fails instead of hanging.
#pragma once

#include <QColor>
#include <QMessageBox>
#include <QObject>
#include <QStringList>
#include <QTimer>
#include <QVector>

#include <functional>

class QDialog;

class DialogDriver : public QObject
{
    Q_OBJECT

public:
    struct Box
    {
        QString title;
        QString text;
        QMessageBox::StandardButtons buttons;
        QMessageBox::StandardButton defaultButton;
        QMessageBox::Icon icon;
        QString more; // the informative text
    };
    struct FileQuestion
    {
        QString title;
        QString directory;
        QStringList filters;
    };

    explicit DialogDriver(QObject *parent = nullptr);

    void answerBox(QMessageBox::StandardButton button);
    void answerFile(const QStringList &files);
    void answerColor(const QColor &color);                      // an invalid colour cancels
    void answerWith(const std::function<void(QDialog *)> &act); // any other dialog; must lead to its end

    // A dialog that is itself under test: it is left alone, and only the dialogs that it opens are answered.
    void overlook(const QDialog *dialog) { overlooked = dialog; }

    bool done() const { return script.isEmpty() && unexpected.isEmpty(); }
    const QVector<Box> &boxes() const { return seenBoxes; }
    const QVector<FileQuestion> &files() const { return seenFiles; }
    QStringList unexpected; // class and title of dialogs that nobody expected, or of another kind than expected

private:
    enum class Kind { Box, File, Color, Any };
    struct Step
    {
        Kind kind;
        std::function<void(QDialog *)> act;
    };

    void poll();

    QTimer timer;
    const QDialog *overlooked = nullptr;
    QVector<Step> script;
    QVector<Box> seenBoxes;
    QVector<FileQuestion> seenFiles;
};
