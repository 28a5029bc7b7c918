// Composes the sample show through the window's own controls and saves it as examples/sample.gsw3. The pictures are
// those that the program brings along (src/resources/glowsmith.qrc), so that they are found wherever the show lies.
#include "app/mainwindow.h"
#include "forms/style.h"
#include "show/base/resources.h"
#include "show/model/patternrecord.h"
#include "timeline/timeline.h"
#include "ui_mainwindow.h"

#include <QActionGroup>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>

namespace {

void add(MainWindow &window, int startMs, int endMs)
{
    window.ui->NEW_radio->setChecked(true);
    window.ui->Mode_t1->setTime(glow::timeOf(startMs));
    window.ui->Mode_t2->setTime(glow::timeOf(endMs));
    window.on_Add_Button_clicked();
}

void addPicture(MainWindow &window, const QString &name, int startMs, int endMs)
{
    window.ui->Mode_Pic->setCurrentIndex(glow::PicturePattern);
    window.picload(QStringLiteral(":/sample/") + name);
    add(window, startMs, endMs);
}

void addColour(MainWindow &window, const QColor &colour, int startMs, int endMs)
{
    window.foreColor = colour;
    window.ui->Mode_Pic->setCurrentIndex(glow::TextPattern);
    window.ui->Mode_Pic->setCurrentIndex(glow::ColourPattern);
    add(window, startMs, endMs);
}

void addText(MainWindow &window, const QString &text, int startMs, int endMs)
{
    window.foreColor = QColor(80, 220, 255);
    window.backColor = Qt::black;
    window.ui->Mode_Pic->setCurrentIndex(glow::ColourPattern);
    window.ui->Mode_Pic->setCurrentIndex(glow::TextPattern);
    window.ui->text_Edit->setText(text);
    add(window, startMs, endMs);
}

void addEffect(MainWindow &window, int row, int mode, int startMs, int endMs)
{
    window.foreColor = QColor(255, 60, 120);
    window.backColor = Qt::black;
    window.ui->Mode_Pic->setCurrentIndex(glow::ColourPattern);
    window.ui->Spe_color3->setCheckState(static_cast<Qt::CheckState>(mode));
    window.ui->Mode_Pic->setCurrentIndex(glow::EffectPattern);
    window.ui->Spe_comboBox->setCurrentIndex(row);
    add(window, startMs, endMs);
}

} // namespace

int main(int argc, char *argv[])
{
    const QTemporaryDir folder;
    qputenv("XDG_CONFIG_HOME", folder.path().toLocal8Bit());
    const QApplication application(argc, argv);
    glow::initResources();
    glow::prepareApplication();
    {
        QSettings settings(QStringLiteral("Vantorel"), QStringLiteral("Glowsmith"));
        settings.setValue(QStringLiteral("main/gadget"), 4);
    }
    MainWindow window;
    window.show();

    addColour(window, QColor(0, 60, 255), 0, 1000);
    addEffect(window, 7, 1, 1500, 3500);
    addPicture(window, QStringLiteral("waves.png"), 4000, 6500);
    window.on_timeline_add_clicked();

    addPicture(window, QStringLiteral("flame.png"), 500, 2500);
    addText(window, QStringLiteral("GLOW"), 2500, 4000);
    addPicture(window, QStringLiteral("stars.png"), 4000, 5800);
    addColour(window, QColor(255, 40, 0), 6100, 6600);
    addPicture(window, QStringLiteral("hearts.png"), 6600, 8200);
    addEffect(window, 5, 1, 8200, 9200);

    window.currentFile = QStringLiteral("examples/sample.gsw3");
    window.hasFile = true;
    window.on_actionSave_triggered();
    return QFile::exists(window.currentFile) ? 0 : 1;
}
