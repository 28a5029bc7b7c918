// The window's way to a film of its show.
#include "app/mainwindow.h"

#include "render/filmdialog.h"
#include "show/film/filmplan.h"
#include "show/model/projectfile.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace {

// Beside the project, with its name.
QString filmGoal(const QString &file, bool isProject)
{
    const QFileInfo info(file);
    return isProject ? info.dir().filePath(info.completeBaseName() + QStringLiteral(".mp4"))
                     : QDir::homePath() + QStringLiteral("/Videos/film.mp4");
}

// Gives the tracks the numbers of their labels, in whose order they stand then.
void renumber(glow::FilmShow &show, const QVector<int> &numbers)
{
    for (int i = 0; i < std::min(show.tracks.size(), numbers.size()); ++i) {
        show.tracks[i].number = numbers.at(i);
    }
    std::sort(show.tracks.begin(), show.tracks.end(),
              [](const glow::FilmTrack &a, const glow::FilmTrack &b) { return a.number < b.number; });
}

// Asked whenever the dialog comes to the front: the pictures of a show that is still the same are not decoded again.
class FilmSource
{
public:
    glow::FilmShow showOf(glow::Project now, const QVector<int> &numbers)
    {
        const bool isSame = numbers == lastNumbers && now.ledCount == last.ledCount && now.songPath == last.songPath &&
                            now.tracks == last.tracks;
        if (!isSame) {
            show = glow::filmShow(now);
            renumber(show, numbers);
            last = std::move(now);
            lastNumbers = numbers;
        }
        return show;
    }

private:
    glow::Project last;
    QVector<int> lastNumbers;
    glow::FilmShow show;
};

} // namespace

void MainWindow::on_actionFilm_triggered()
{
    auto *dialog = findChild<FilmDialog *>();
    if (dialog == nullptr) {
        auto source = [this, films = FilmSource()]() mutable {
            QVector<int> numbers;
            for (const Timeline *track : qAsConst(timelines)) {
                numbers.append(trackNumber(track));
            }
            return films.showOf(asProject(), numbers);
        };
        dialog = new FilmDialog(std::move(source), trackNumber(currentTimeline), filmGoal(currentFile, hasFile), this);
    }
    dialog->show();
    dialog->raise();
    dialog->activateWindow();
}
