// SPDX-License-Identifier: MIT
#include "app/textured_background.h"

#include "platform/qt/user_defaults.h"
#include "platform/qt/user_defaults_keys.h"

#include <QApplication>
#include <QImage>
#include <QMainWindow>
#include <QPixmap>

namespace plyra {
namespace {

// A brushed-metal tile in the shade of the window colour: fine horizontal streaks of
// slightly lighter and darker rows, the same in every window.
QPixmap brushedTexture(const QColor& base)
{
    constexpr int kSide = 128;
    QImage tile(kSide, kSide, QImage::Format_RGB32);
    quint32 seed = 0x2545F491u;
    for (int y = 0; y < kSide; ++y) {
        int streak = 0;
        for (int x = 0; x < kSide; ++x) {
            seed ^= seed << 13;
            seed ^= seed >> 17;
            seed ^= seed << 5;
            if (x % 16 == 0)
                streak = int(seed % 3) - 1;
            const int grain = int((seed >> 8) % 3) - 1;
            tile.setPixelColor(x, y, base.lighter(100 + streak + grain));
        }
    }
    return QPixmap::fromImage(tile);
}

} // namespace

void TexturedBackground::registerDefault()
{
    UserDefaults::standard().registerDefaults({{QLatin1String(DefaultsKey::kTexturedWindows), true}});
}

bool TexturedBackground::apply(QMainWindow& window, const QList<QWidget*>& bars)
{
    if (!UserDefaults::standard().boolean(QLatin1String(DefaultsKey::kTexturedWindows)))
        return false;
    // Bars draw their own shading from the window colour, which a texture does not have:
    // they keep the plain palette, set rather than inherited.
    QPalette solid = QApplication::palette(&window);
    solid.setColor(QPalette::Window, solid.color(QPalette::Window));
    for (QWidget* bar : bars)
        bar->setPalette(solid);
    QPalette textured = window.palette();
    textured.setBrush(QPalette::Window, QBrush(brushedTexture(textured.color(QPalette::Window))));
    window.setPalette(textured);
    window.setAutoFillBackground(true);
    return true;
}

} // namespace plyra
