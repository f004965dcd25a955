// SPDX-License-Identifier: MIT
#include "widgets/screen_fit.h"

#include <QApplication>
#include <QEvent>
#include <QScreen>
#include <QWidget>

#include <algorithm>

namespace plyra {
namespace {

constexpr const char* kFittedProperty = "plyraScreenFitted";

} // namespace

void ScreenFit::install()
{
    static ScreenFit* filter = nullptr;
    if (filter)
        return;
    filter = new ScreenFit(qApp);
    qApp->installEventFilter(filter);
}

void ScreenFit::fit(QWidget* window)
{
    const QScreen* screen = window->screen() ? window->screen() : QGuiApplication::primaryScreen();
    if (!screen || window->isMaximized() || window->isFullScreen())
        return;
    const QRect available = screen->availableGeometry();
    // The window manager's frame comes on top of the window's own size.
    const QSize frame = (window->frameGeometry().size() - window->size()).expandedTo(QSize(0, 0));
    const QSize room = (available.size() - frame).expandedTo(window->minimumSize());
    const QSize size = window->size().boundedTo(room);
    if (size != window->size())
        window->resize(size);
    const QSize outer = size + frame;
    const QPoint corner = window->frameGeometry().topLeft();
    const QPoint inside(std::clamp(corner.x(), available.left(), std::max(available.left(), available.right() + 1 - outer.width())),
        std::clamp(corner.y(), available.top(), std::max(available.top(), available.bottom() + 1 - outer.height())));
    if (inside != corner)
        window->move(inside);
}

bool ScreenFit::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Show && watched->isWidgetType()) {
        auto* widget = static_cast<QWidget*>(watched);
        const Qt::WindowType kind = widget->windowType();
        const bool window = widget->isWindow() && (kind == Qt::Window || kind == Qt::Dialog || kind == Qt::Tool);
        // Only the first time: shown again, a window keeps where the user put it.
        if (window && widget->isVisible() && !widget->property(kFittedProperty).toBool()) {
            widget->setProperty(kFittedProperty, true);
            fit(widget);
        }
    }
    return QObject::eventFilter(watched, event);
}

} // namespace plyra
