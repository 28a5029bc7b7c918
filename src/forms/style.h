// The look of the program: one dark style, kept in one style sheet (":/style/glowsmith.qss").
#pragma once

class QString;
class QWidget;

namespace glow {

// The whole style sheet.
QString styleSheet();

// Gives a top-level window the style sheet; its children and the dialogs that it opens inherit it. To be called once
// the form stands, by each window and each dialog without a parent.
void applyStyle(QWidget *window);

// An installed family with Traditional Chinese and Latin letters of its own, so that neither is drawn by another one that
// stands higher or lower on the line. Empty where there is none.
QString familyForTexts();

// What a style sheet cannot reach, for the whole program: the same base style and dark palette on every platform, and
// fonts with Traditional Chinese glyphs for systems that lack the form's font. To be called once, before the first
// window.
void prepareApplication();

} // namespace glow
