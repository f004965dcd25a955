// SPDX-License-Identifier: MIT
#include "app/document_render_windows.h"

#include "inspector/inspectable_window.h"
#include "model/morph_document.h"
#include "platform/notification_center.h"
#include "render/windows/frame_window.h"
#include "render/windows/movie_window.h"

#include <QEvent>

namespace plyra {

DocumentRenderWindows::DocumentRenderWindows(MorphDocument& document, QWidget* documentWindow)
    : QObject(documentWindow)
    , m_document(document)
    , m_notificationObject(document.notificationObject())
    , m_documentWindow(documentWindow)
{
}

DocumentRenderWindows::~DocumentRenderWindows()
{
    closeAll();
}

FrameWindow* DocumentRenderWindows::frameWindow() const
{
    return m_frameWindow;
}

MovieWindow* DocumentRenderWindows::movieWindow() const
{
    return m_movieWindow;
}

void DocumentRenderWindows::showFrameWindow()
{
    if (!m_frameWindow) {
        m_frameWindow = new FrameWindow(m_document, m_documentWindow);
        m_frameWindow->installEventFilter(this);
        connect(m_frameWindow, &FrameWindow::timeChanged, this, &DocumentRenderWindows::postFrameTimeUpdated);
        name(m_frameWindow);
    }
    present(m_frameWindow);
}

void DocumentRenderWindows::showMovieWindow()
{
    if (!m_movieWindow) {
        m_movieWindow = new MovieWindow(m_document, m_documentWindow);
        name(m_movieWindow);
    }
    present(m_movieWindow);
}

void DocumentRenderWindows::present(RenderWindow* window)
{
    window->setAttribute(Qt::WA_DeleteOnClose, false);
    window->show();
    window->raise();
    window->activateWindow();
}

void DocumentRenderWindows::setDocumentName(const QString& displayName, const QString& filePath)
{
    m_displayName = displayName;
    m_filePath = filePath;
    if (m_frameWindow)
        name(m_frameWindow);
    if (m_movieWindow)
        name(m_movieWindow);
}

void DocumentRenderWindows::name(RenderWindow* window) const
{
    window->setDocumentDisplayName(m_displayName);
    window->setDocumentFilePath(m_filePath);
}

std::optional<float> DocumentRenderWindows::shownFrameTime() const
{
    if (!m_frameWindow || !m_frameWindow->isVisible())
        return std::nullopt;
    return m_frameWindow->time();
}

bool DocumentRenderWindows::mayCloseAll()
{
    return !m_movieWindow || m_movieWindow->mayDiscardResult();
}

void DocumentRenderWindows::closeAll()
{
    delete m_frameWindow.data();
    delete m_movieWindow.data();
    postFrameTimeUpdated();
}

void DocumentRenderWindows::postFrameTimeUpdated()
{
    NotificationQueue::defaultQueue().enqueueAsSoonAsPossible({kFrameTimeUpdatedNotification, m_notificationObject});
}

bool DocumentRenderWindows::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_frameWindow && (event->type() == QEvent::Show || event->type() == QEvent::Hide))
        postFrameTimeUpdated();
    return QObject::eventFilter(watched, event);
}

} // namespace plyra
