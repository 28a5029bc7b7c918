// Drawing: the text tab, the effects, the preview.
#include "bench.h"

#include "app/mainwindow.h"
#include "preview/mygl.h"
#include "render/effectimage.h"
#include "ui_mainwindow.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <algorithm>

void bench::render(QVector<Row> &rows)
{
    double slowest = 0;
    for (int row = 0; row < 14; ++row) {
        for (int mode = 0; mode < 3; ++mode) {
            glow::EffectSettings settings;
            settings.row = row;
            settings.mode = mode;
            settings.width = 10;
            slowest = std::max(slowest, median(5, [&settings] { glow::effectImage(settings); }));
        }
    }
    rows.append({QStringLiteral("One run of the slowest effect"), slowest, 0, 5, QString()});

    MainWindow window;
    window.show();
    window.ui->Mode_Pic->setCurrentIndex(2);
    int count = 0;
    const double keystroke =
        median(15, [&window, &count] { window.ui->text_Edit->setText(QStringLiteral("Glow %1").arg(++count)); });
    rows.append({QStringLiteral("A keystroke in the text tab"), keystroke, 0, 50, QString()});

    window.ui->Leds->setValue(120);
    window.resize(1300, 885);
    for (int i = 0; i < 20; ++i) {
        QCoreApplication::processEvents();
    }
    MyGL *preview = window.ui->GLWidget;
    // One frame at 60 frames a second: the steps of 16.7 ms and everything painted.
    const double frame = median(60, [preview] {
        QElapsedTimer wait;
        wait.start();
        while (wait.elapsed() < 17) {
        }
        preview->repaint();
    });
    rows.append({QStringLiteral("Preview of 120 LEDs, one frame of 16.7 ms (waiting included: 17 ms)"), frame - 17.0, 0,
                 5, QString()});
}
