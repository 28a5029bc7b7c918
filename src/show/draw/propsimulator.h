// The simulated prop behind the preview: plain arithmetic and drawing on images, no widget.
//
// Two views are kept as images of 400 by 400 pixels. The disc is a spinning bar of LEDs whose light is drawn wedge by
// wedge and stays where it was drawn; the strip is the bar itself, seen straight on. Time is counted in steps: one step
// shows one column of the pattern and turns the bar by spinSpeed sixteenths of a degree.
#pragma once

#include "show/draw/afterglow.h"
#include "show/draw/rasterops.h"

#include <QImage>
#include <QRadialGradient>
#include <QTime>
#include <QVector>

class QPainter;
class QPixmap;
class QRect;

namespace glow {

// Columns of one repetition of a pattern: one a millisecond, always an even number. 0 for a time that is not above zero
// or beyond all measure; a repeat count below 1 counts as 1.
int previewColumns(double seconds, int repeats);

// How many steps a paint runs after so many milliseconds (0 to 100): about 0.96 for each, and always at least one.
int previewSteps(int elapsedMs);

class PropSimulator
{
public:
    PropSimulator();

    // The widest pattern, and the largest picture it comes from, for which a scaled image is made. A wider one (more
    // than half a minute in one repetition) is looked up in its picture column by column instead, so that a pattern of
    // 24 hours takes no memory of its own.
    static constexpr int widestImage = painterLimit;

    // Takes a picture as the pattern to show: brought to previewColumns(seconds, repeats) columns and leds rows without
    // smoothing, shown from its column 0. A null picture counts as black. Transparency is ignored, as the prop does.
    void showPicture(const QImage &picture, qint16 leds, double seconds, int repeats);

    // Changes the spin, -9 to 9, and keeps the bar where it is; 0 paints the whole disc at once as a still picture.
    void setSpinSpeed(int speed);

    // Both images black, the pattern from its start.
    void resetImages();

    // Runs the steps that belong to the elapsed time (cut to 100 ms).
    void runSteps(int elapsedMs);

    // Runs that many steps; nothing for none or fewer.
    void advance(int steps);

    // The pattern moves on by so many columns in so many steps, both above zero, instead of one a step; in force until
    // the next pattern is shown.
    void setColumnPace(qint64 columns, qint64 steps);

    // One frame of the preview, w by h pixels from the painter's origin: runs the steps since the last frame, then
    // draws disc, afterglow, strip and frame rate on black. Any surface will do, with or without an alpha channel and
    // whatever it holds.
    void paintFrame(QPainter &painter, int w, int h);

    // Disc, afterglow and strip as a frame of w by h pixels shows them, pixel for pixel, but without the frame rate and
    // without running a step: into the cell of a picture of Format_RGB32 that is black there and holds the whole cell.
    void drawViews(QImage &picture, const QRect &cell);

    // Keeps the time of the steps and returns true if the next frame would look exactly like the last one painted, so
    // that it need not be painted: nothing turns or runs, and the frame rate text is up to date. Otherwise false, and
    // nothing is done.
    bool skipFrame();

    // Colour of a pixel of the pattern, 0 <= column < columns(), 0 <= row < rows(); always opaque.
    QRgb pixelAt(qint64 column, int row) const;
    int columns() const;
    int rows() const;

    qint32 frameTimeAverage = 60; // running mean of the milliseconds between paints
    qint32 frameTimeShown = 60;   // the value behind the frame rate text
    QTime stepClock;              // started anew at each step run
    QImage patternImage;          // one column a step, one row an LED; null when the pattern is too wide (widestImage)
    QImage discImage;             // persistent, 400 by 400, Format_ARGB32_Premultiplied
    QImage stripImage;            // the same
    qint16 patternLeds = 0;       // as given; stored and not read again
    qint64 stepCount = 0;         // steps run so far
    qint64 stepOrigin = 0;        // value of stepCount at which column 0 is shown
    qint32 spinSpeed = 9;         // -9 to 9, 0 is the still picture; positive turns clockwise
    qint32 columnCount = 0;       // width of the pattern in columns
    qint32 patternRepeats = 0;    // as given

private:
    // Where the views stand in a frame, in pixels.
    struct Views
    {
        int side = 0; // of both views, which are square
        int discLeft = 0;
        int stripLeft = 0;
        int top = 0;
        QPointF centre;     // of the afterglow, within the disc
        qint64 degrees = 0; // the newest wedge
    };
    Views viewsIn(int w, int h) const;

    qint64 columnAt(qint64 step) const;
    QRadialGradient discGradient(qint64 column) const;
    void drawStripBody(QPainter &painter) const;
    void drawStripColumn(QPainter &painter, qint64 column) const;
    void composeViews(QPainter &painter, int w, int h);
    void composeFrame(QPainter &painter, int w, int h);
    int elapsedMs() const;
    int restartClock();
    void lookAtPattern();
    bool isNothingMoving() const;

    qint64 paceColumns = 1; // see setColumnPace
    qint64 paceSteps = 1;
    QVector<int> nearest; // for drawViews: the column (and row) of the views' images behind each pixel of their side
    QImage widePicture;   // the picture itself while patternImage is null because the pattern is too wide
    int wideRows = 0;
    bool isSteady = true; // all columns of the pattern are the same
    bool isDark = true;   // and black
    bool isStill = false; // see skipFrame
    Afterglow afterglow;
    QImage frameImage; // the frame being composed, kept for its memory
};

} // namespace glow
