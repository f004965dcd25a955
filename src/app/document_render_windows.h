// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

#include <optional>

namespace plyra {

class FrameWindow;
class MorphDocument;
class MovieWindow;
class RenderWindow;

/// The render windows of one document window: the single-frame and the movie window,
/// each made on first request and kept (asking again brings it forward), titled after
/// the document, and closed with it. Whenever the frame window shows, hides or changes
/// its time, the inspector panel hears of it ("frameTimeUpdated" about the document).
/// Threads: main thread only.
class DocumentRenderWindows : public QObject {
    Q_OBJECT

public:
    /// The windows belong to documentWindow; document must outlive them (closeAll()).
    DocumentRenderWindows(MorphDocument& document, QWidget* documentWindow);
    ~DocumentRenderWindows() override;

    /// Null before the first request.
    FrameWindow* frameWindow() const;
    MovieWindow* movieWindow() const;

    void showFrameWindow();
    void showMovieWindow();
    /// The document's name for the titles and its package (empty while never saved).
    void setDocumentName(const QString& displayName, const QString& filePath);
    /// The time the frame window shows, or nothing while none is open.
    std::optional<float> shownFrameTime() const;
    /// Asks before a finished movie that was not saved is lost; false when the user
    /// cancelled.
    bool mayCloseAll();
    /// Closes and deletes both windows, without asking.
    void closeAll();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void present(RenderWindow* window);
    void name(RenderWindow* window) const;
    void postFrameTimeUpdated();

    MorphDocument& m_document;
    // Only compared by the panel: still valid to post after the document is gone.
    const void* m_notificationObject;
    QWidget* m_documentWindow;
    QPointer<FrameWindow> m_frameWindow;
    QPointer<MovieWindow> m_movieWindow;
    QString m_displayName;
    QString m_filePath;
};

} // namespace plyra
