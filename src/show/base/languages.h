// The languages of the interface. The texts in the source are Traditional Chinese; English comes from catalogues among
// the resources: a first one, made long ago, in which a good part of the texts has no English, and a second one that
// has the rest.
#pragma once

#include "show/base/appsettings.h"

#include <QTranslator>

namespace glow {

// The catalogues in use, which must outlive every text that is asked for. Used by the GUI thread only.
class Languages
{
public:
    // Speaks this language from now on; what is shown already keeps its texts. A number that is no language is taken as
    // Chinese without Qt's own texts.
    void speak(int language);

    // Whether the system's own language is one that the source texts are of no use to.
    static bool systemIsForeign();

private:
    QTranslator first;
    QTranslator rest;
    QTranslator qtTexts; // of Qt's own dialogs and buttons
};

} // namespace glow
