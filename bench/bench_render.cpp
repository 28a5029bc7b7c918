// Drawing: the text tab, the effects, the preview.
#include "bench.h"

#include "app/mainwindow.h"
#include "preview/mygl.h"
#include "show/draw/effectimage.h"
#include "ui_mainwindow.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QPainter>

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
    // One frame at 60 frames a second: the steps of the time since the last one and everything painted, onto a surface
    // in memory. What a graphics card does with it afterwards is not the program's.
    QImage surface(preview->size(), QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&surface);
    const double waiting = 17.0;
    const double frame = median(60, [preview, &painter, waiting] {
        QElapsedTimer wait;
        wait.start();
        while (double(wait.nsecsElapsed()) < waiting * 1e6) {
        }
        preview->paintFrame(painter, preview->width(), preview->height());
    });
    rows.append({QStringLiteral("Preview of 120 LEDs, one frame of 16.7 ms"), frame - waiting, 0, 5, QString()});
}
