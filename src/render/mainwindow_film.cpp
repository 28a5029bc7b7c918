// The window's way to a film of its show.
#include "app/mainwindow.h"

#include "render/filmdialog.h"
#include "show/film/filmplan.h"
#include "show/model/projectfile.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace {

// Beside the project, with its name.
QString filmGoal(const QString &file, bool isProject)
{
    const QFileInfo info(file);
    return isProject ? info.dir().filePath(info.completeBaseName() + QStringLiteral(".mp4"))
                     : QDir::homePath() + QStringLiteral("/Videos/film.mp4");
}

} // namespace

glow::FilmShow MainWindow::asFilmShow() const
{
    glow::FilmShow show = glow::filmShow(asProject());
    for (int i = 0; i < std::min(show.tracks.size(), timelines.size()); ++i) {
        show.tracks[i].number = trackNumber(timelines.at(i));
    }
    std::sort(show.tracks.begin(), show.tracks.end(),
              [](const glow::FilmTrack &a, const glow::FilmTrack &b) { return a.number < b.number; });
    return show;
}

void MainWindow::on_actionFilm_triggered()
{
    auto *dialog = findChild<FilmDialog *>();
    if (dialog == nullptr) {
        dialog = new FilmDialog([this] { return asFilmShow(); }, trackNumber(currentTimeline),
                                filmGoal(currentFile, hasFile), this);
    }
    dialog->show();
    dialog->raise();
    dialog->activateWindow();
}
