#include "show/base/languages.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>

namespace glow {

namespace {

// Where Qt's translations are not installed its texts stay English.
void installQtTexts(QTranslator &translator)
{
    const QString name = QStringLiteral("qtbase_zh_TW");
    if (translator.load(name, QLibraryInfo::location(QLibraryInfo::TranslationsPath)) ||
        translator.load(name, QCoreApplication::applicationDirPath() + QStringLiteral("/translations"))) {
        QCoreApplication::installTranslator(&translator);
    }
}

} // namespace

void Languages::speak(int language)
{
    for (QTranslator *old : {&first, &rest, &qtTexts}) {
        QCoreApplication::removeTranslator(old);
    }
    if (language == AppSettings::Chinese) {
        QLocale::setDefault(QLocale(QLocale::Chinese, QLocale::AnyCountry));
    }
    if (language == AppSettings::Chinese || language == AppSettings::NeverChosen) {
        installQtTexts(qtTexts);
        return;
    }
    if (language == AppSettings::English || language == AppSettings::CompleteEnglish) {
        first.load(QStringLiteral(":/language/language/english.qm"));
    }
    QCoreApplication::installTranslator(&first);
    if (language == AppSettings::CompleteEnglish) {
        rest.load(QStringLiteral(":/language/language/complete.qm"));
        QCoreApplication::installTranslator(&rest); // asked before the first
    }
}

bool Languages::systemIsForeign()
{
    return QLocale::system().language() != QLocale::Chinese;
}

} // namespace glow
