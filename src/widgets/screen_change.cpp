// SPDX-License-Identifier: MIT
#include "widgets/screen_change.h"

#include <QEvent>
#include <QPointer>
#include <QScreen>
#include <QWidget>
#include <QWindow>

namespace plyra {
namespace {

/// Connects to the screen changes of the window its widget is in, again at every show.
/// Threads: main thread only.
class ScreenChangeFollower : public QObject {
public:
    ScreenChangeFollower(QWidget* widget, std::function<void()> changed)
        : QObject(widget)
        , m_widget(widget)
        , m_changed(std::move(changed))
    {
        widget->installEventFilter(this);
        follow();
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (watched == m_widget && event->type() == QEvent::Show)
            follow();
        return QObject::eventFilter(watched, event);
    }

private:
    void follow()
    {
        QWindow* window = m_widget->window()->windowHandle();
        if (!window || window == m_window)
            return;
        disconnect(m_connection);
        m_window = window;
        m_connection = connect(window, &QWindow::screenChanged, this, [this] { m_changed(); });
    }

    QWidget* m_widget;
    std::function<void()> m_changed;
    QPointer<QWindow> m_window;
    QMetaObject::Connection m_connection;
};

} // namespace

void followScreenChanges(QWidget* widget, std::function<void()> changed)
{
    new ScreenChangeFollower(widget, std::move(changed));
}

} // namespace plyra
