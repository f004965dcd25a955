// SPDX-License-Identifier: MIT
#include "inspector/panel_placement.h"

#include "platform/qt/user_defaults.h"
#include "platform/qt/user_defaults_keys.h"

#include <algorithm>

namespace plyra {
namespace {

constexpr int kGap = 8;
// At least this much of a remembered panel must lie on the screen to be used again.
constexpr int kVisibleMinimum = 48;

} // namespace

QPoint PanelPlacement::besideWindow(const QRect& windowFrame, QSize panelSize, const QRect& available)
{
    int x = available.right() + 1 - panelSize.width();
    if (windowFrame.right() + kGap + panelSize.width() <= available.right() + 1)
        x = windowFrame.right() + 1 + kGap;
    else if (windowFrame.left() - kGap - panelSize.width() >= available.left())
        x = windowFrame.left() - kGap - panelSize.width();
    const int lowestTop = std::max(available.top(), available.bottom() + 1 - panelSize.height());
    const int y = std::clamp(windowFrame.top(), available.top(), lowestTop);
    return {std::max(x, available.left()), y};
}

std::optional<QPoint> PanelPlacement::remembered(QSize panelSize, const QRect& available)
{
    const QVariant stored = UserDefaults::standard().object(QLatin1String(DefaultsKey::kInspectorPanelPosition));
    if (!stored.canConvert<QPoint>())
        return std::nullopt;
    const QPoint position = stored.toPoint();
    const QRect onScreen = QRect(position, panelSize) & available;
    if (onScreen.width() < kVisibleMinimum || onScreen.height() < kVisibleMinimum)
        return std::nullopt;
    return position;
}

void PanelPlacement::remember(QPoint position)
{
    UserDefaults::standard().setObject(QLatin1String(DefaultsKey::kInspectorPanelPosition), position);
}

} // namespace plyra
