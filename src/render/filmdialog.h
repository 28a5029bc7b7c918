// Turns the show into a film: choices, a frame of it, progress. The window stays usable beside it and may be changed
// or closed meanwhile; a film in the making keeps the show as it was when it began, and ends with the dialog.
#pragma once

#include "show/film/filmencoder.h"
#include "show/film/filmplan.h"

#include <QDialog>
#include <QString>

#include <functional>
#include <memory>

class FilmThread;

namespace Ui {
class FilmDialog;
}

namespace glow {
class FilmRenderer;
}

class FilmDialog : public QDialog
{
    Q_OBJECT

public:
    // source tells the show as it is now; it is asked whenever the dialog comes to the front. track is the number of
    // the one chosen at first, goal the file that is offered.
    FilmDialog(std::function<glow::FilmShow()> source, int track, QString goal, QWidget *parent);
    ~FilmDialog() override;

    // True from the beginning of a film to its end, be it good or bad.
    bool isBusy() const;

    Ui::FilmDialog *ui;

protected:
    void changeEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void connectControls();
    void refreshShow();
    void choicesChanged();
    void showFrame();
    void begin();
    bool agreesToSilence();
    QString askForGoal();
    void cancelOrClose();
    void finish();
    void setBusy(bool busy);
    glow::FilmOptions chosen() const;
    glow::PlannedFilm planFor(const QString &path) const;

    std::function<glow::FilmShow()> showNow;
    QString goal;
    glow::FilmShow filmed; // as last told
    glow::SongFacts song;
    QString outcome;      // of the last film
    bool toTheEnd = true; // the end follows the show
    std::unique_ptr<glow::FilmRenderer> renderer;
    std::unique_ptr<FilmThread> thread;
};
