// Makes the icons of the effect list: every effect's own picture, small. Run by the build target effect-icons.
//
//   effecticons FOLDER
#include "show/draw/effectimage.h"

#include <QCoreApplication>
#include <QDir>
#include <QImageWriter>

#include <array>
#include <cstdio>

namespace {

// Twice what the list shows, for screens of high density.
constexpr int iconWidth = 96;
constexpr int iconHeight = 48;

struct Icon
{
    const char *file;
    int mode;
    int width;
};

// In the order of the list. The mode is the one in which the effect shows best at this size.
constexpr std::array<Icon, glow::EffectRowCount> icons = {{
    {"flash.bmp", glow::PlainMode, 8},
    {"wipe.bmp", glow::PlainMode, 5},
    {"jump.bmp", glow::PlainMode, 5},
    {"fade.bmp", glow::HueMode, 8},
    {"rainbow.bmp", glow::PlainMode, 5},
    {"arrow.bmp", glow::PlainMode, 5},
    {"arrow2.bmp", glow::PlainMode, 5},
    {"line2.bmp", glow::HueMode, 6},
    {"line1.bmp", glow::HueMode, 6},
    {"brick.bmp", glow::PlainMode, 5},
    {"static (1).jpg", glow::PlainMode, 5},
    {"static (2).jpg", glow::PlainMode, 5},
    {"static (3).jpg", glow::PlainMode, 5},
    {"static (4).jpg", glow::PlainMode, 5},
}};

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QDir folder(QCoreApplication::arguments().value(1));
    for (int row = 0; row < glow::EffectRowCount; ++row) {
        const Icon &icon = icons.at(static_cast<std::size_t>(row));
        glow::EffectSettings settings;
        settings.row = row;
        settings.mode = icon.mode;
        settings.width = icon.width;
        const QImage picture =
            glow::effectImage(settings).scaled(iconWidth, iconHeight, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        QImageWriter writer(folder.filePath(QString::fromLatin1(icon.file)));
        writer.setQuality(95);
        if (!writer.write(picture)) {
            std::fprintf(stderr, "%s: %s\n", qPrintable(writer.fileName()), qPrintable(writer.errorString()));
            return 1;
        }
    }
    return 0;
}
