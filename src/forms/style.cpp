#include "forms/style.h"

#include "show/base/resources.h"

#include <QAbstractButton>
#include <QApplication>
#include <QColor>
#include <QDialogButtonBox>
#include <QFile>
#include <QFont>
#include <QFontDatabase>
#include <QIcon>
#include <QList>
#include <QPalette>
#include <QString>
#include <QStringList>
#include <QStyleFactory>
#include <QToolTip>
#include <QWidget>

#include <algorithm>

namespace glow {

namespace {

QPalette darkPalette()
{
    const QColor window(50, 55, 60);
    const QColor field(40, 44, 48);
    const QColor text(225, 228, 231);
    const QColor faint(140, 144, 148);
    QPalette palette(window, window);
    palette.setColor(QPalette::Base, field);
    palette.setColor(QPalette::AlternateBase, QColor(45, 49, 54));
    palette.setColor(QPalette::ToolTipBase, QColor(38, 42, 46));
    palette.setColor(QPalette::Highlight, QColor(70, 100, 104));
    palette.setColor(QPalette::Link, QColor(98, 213, 218));
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(role, text);
        palette.setColor(QPalette::Disabled, role, faint);
    }
    palette.setColor(QPalette::PlaceholderText, faint);
    for (const QPalette::ColorRole role : {QPalette::BrightText, QPalette::HighlightedText, QPalette::ToolTipText})
        palette.setColor(role, Qt::white);
    return palette;
}

// What stands in for the form's font, the best first.
QStringList chineseFamilies()
{
    return {QStringLiteral("Microsoft JhengHei"), QStringLiteral("Noto Sans CJK TC"), QStringLiteral("Noto Sans TC"),
            QStringLiteral("PingFang TC"), QStringLiteral("WenQuanYi Micro Hei")};
}

} // namespace

QString styleSheet()
{
    initResources();
    QFile file(QStringLiteral(":/style/glowsmith.qss"));
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    return QString::fromUtf8(file.readAll());
}

void applyStyle(QWidget *window)
{
    window->setStyleSheet(styleSheet());
    // Tab pages that have not been shown yet would still report the sizes of the unstyled look, and a small window
    // would open with its lower controls cut off.
    const QList<QWidget *> children = window->findChildren<QWidget *>();
    for (QWidget *child : children)
        child->ensurePolished();
    // The style sheet turns the icons of standard buttons off, but those of a form are older than the style sheet.
    const QList<QDialogButtonBox *> boxes = window->findChildren<QDialogButtonBox *>();
    for (const QDialogButtonBox *box : boxes) {
        const QList<QAbstractButton *> buttons = box->buttons();
        for (QAbstractButton *button : buttons)
            button->setIcon(QIcon());
    }
}

QString familyForTexts()
{
    const QFontDatabase fonts;
    const QStringList installed = fonts.families(QFontDatabase::TraditionalChinese);
    const auto suits = [&](const QString &family) {
        return installed.contains(family) && fonts.writingSystems(family).contains(QFontDatabase::Latin);
    };
    for (const QStringList &candidates : {QStringList(QStringLiteral("微軟正黑體")) + chineseFamilies(), installed}) {
        const auto found = std::find_if(candidates.cbegin(), candidates.cend(), suits);
        if (found != candidates.cend())
            return *found;
    }
    return QString();
}

void prepareApplication()
{
    QFont::insertSubstitutions(QStringLiteral("微軟正黑體"), chineseFamilies() << QStringLiteral("sans-serif"));
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    const QPalette palette = darkPalette();
    QApplication::setPalette(palette);
    QToolTip::setPalette(palette);
}

} // namespace glow
