// The start dialog: a new show, a project, or the last project again; it also shows the program's version and asks the
// update server for a newer one. The menu shows the same dialog as its about box, with Load_frame hidden.
#pragma once

#include <QDialog>
#include <QNetworkReply>
#include <QString>
#include <QVector>

#include <functional>

class QNetworkAccessManager;

namespace Ui {
class about;
}

class about : public QDialog
{
    Q_OBJECT

public:
    // Checks for a new version at once; the answer comes while the dialog is shown and nothing waits for it.
    explicit about(QWidget *parent = nullptr);

    // Gives up a check that is still under way.
    ~about() override;

    // The dialog with nothing to open in it, until it is closed.
    static void showAsAboutBox();

    // A small line beside the version that calls this and shows the dialog's own texts anew; then it goes away.
    void offerEnglish(const std::function<void()> &speakEnglish);

    QString loadPath; // the project that was chosen; empty when a new show is wanted. Read it after exec()
    QNetworkAccessManager *networkManager = nullptr; // of the latest check
    QNetworkReply *reply = nullptr;                  // of the latest check
    double appVersion;
    Ui::about *ui;

    // How many checks of this run have no answer, those that were given up included. The system's name lookup may then
    // still be running, which cannot be cancelled, and QApplication's destructor would wait for it.
    static int unansweredChecks();

signals:
    void loadFile(QString path);

public slots:
    void on_pushButton_clicked();
    void on_pushButton_2_clicked();
    void on_pushButton_3_clicked();
    void slotError(QNetworkReply::NetworkError code);
    void replyFinished(QNetworkReply *reply);
    void on_pushButton0_clicked();
    void on_load_button_clicked();
    void on_load_current_clicked();

private:
    void showTexts();

    QVector<QNetworkAccessManager *> managers; // one for each check; the older ones may still be waiting
    static int unanswered;
};
