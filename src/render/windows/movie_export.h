// SPDX-License-Identifier: MIT
#pragma once

#include "render/movie_render_controller.h"

#include <QObject>
#include <QPointer>
#include <QProgressDialog>
#include <QString>
#include <QTimer>

namespace plyra {

/// Renders a movie window's movie once more, straight into a kind of file that the movie
/// the window shows cannot become without loss (another codec, a GIF or WebP made from
/// lossless frames, numbered images), with its progress in a dialog of the window that
/// can cancel it, and saves it once complete. The render takes the window's settings as
/// they are (its frame size fixed), so that the file holds the movie the window showed.
/// Threads: main thread.
class MovieExport : public QObject {
    Q_OBJECT

public:
    static constexpr int kPollIntervalMs = 20;

    MovieExport(MovieRenderController& source, QWidget* window);
    ~MovieExport() override;

    /// Starts the render for path; false with the reason when it cannot start.
    bool start(const QString& path, QString* error);
    MovieRenderController& renderer() { return m_renderer; }
    QProgressDialog* progressDialog() const { return m_progress; }

signals:
    /// The file was saved; or it could not be (reason given) or was cancelled (no reason).
    void finished(bool saved, const QString& path, const QString& reason);

private:
    void poll();
    void cancel();
    void end(bool saved, const QString& reason);

    MovieRenderController m_renderer;
    QPointer<QProgressDialog> m_progress;
    QTimer m_poll;
    QString m_path;
};

} // namespace plyra
