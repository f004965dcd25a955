// SPDX-License-Identifier: MIT
#include "render/windows/movie_export.h"

#include <QFileInfo>
#include <QProgressDialog>

namespace plyra {
namespace {

constexpr int kProgressSteps = 1000;

} // namespace

MovieExport::MovieExport(MovieRenderController& source, QWidget* window)
    : QObject(window)
    , m_renderer(source.document())
{
    RenderSettings& settings = m_renderer.settings();
    settings = source.settings();
    // The window's size as it was rendered, whatever the export's own view would say.
    settings.setSizeToView(false);
    settings.setFrameSize(source.frameSize());
    m_renderer.setTiming(source.timing());
    m_renderer.setInterpolationFactor(source.interpolationFactor());
    m_renderer.setCodec(source.askedCodec());
    m_renderer.setQuality(source.askedQuality());
    // Nothing but the dialog waits: append as much as is finished.
    m_renderer.setAppendBudget(std::chrono::milliseconds(50));
    m_poll.setInterval(kPollIntervalMs);
    connect(&m_poll, &QTimer::timeout, this, &MovieExport::poll);
}

MovieExport::~MovieExport()
{
    delete m_progress;
}

bool MovieExport::start(const QString& path, QString* error)
{
    m_path = path;
    if (!m_renderer.setOutputPath(path, error))
        return false;
    if (!m_renderer.recalc()) {
        if (error)
            *error = m_renderer.errorString();
        return false;
    }
    auto* window = static_cast<QWidget*>(parent());
    m_progress = new QProgressDialog(tr("Saving “%1”…").arg(QFileInfo(path).fileName()), tr("Cancel"), 0,
                                     kProgressSteps, window);
    m_progress->setObjectName(QStringLiteral("exportProgress"));
    m_progress->setAccessibleName(tr("Saving"));
    m_progress->setWindowTitle(tr("Saving"));
    m_progress->setWindowModality(Qt::WindowModal);
    m_progress->setMinimumDuration(0);
    m_progress->setAutoReset(false);
    m_progress->setAutoClose(false);
    connect(m_progress, &QProgressDialog::canceled, this, &MovieExport::cancel);
    m_progress->show();
    m_poll.start();
    return true;
}

void MovieExport::poll()
{
    const bool done = m_renderer.tick();
    if (m_progress)
        m_progress->setValue(static_cast<int>(m_renderer.progress() * static_cast<float>(kProgressSteps)));
    if (!done)
        return;
    m_poll.stop();
    // Making a GIF or WebP from the frames takes a while of its own: say so before it starts.
    if (m_progress) {
        m_progress->setLabelText(tr("Writing “%1”…").arg(QFileInfo(m_path).fileName()));
        m_progress->setCancelButton(nullptr);
    }
    QTimer::singleShot(0, this, [this] {
        QString reason;
        const bool saved = m_renderer.saveRenderedMovie(m_path, &reason);
        end(saved, saved ? QString() : reason);
    });
}

void MovieExport::cancel()
{
    m_poll.stop();
    m_renderer.closeMovie();
    end(false, QString());
}

void MovieExport::end(bool saved, const QString& reason)
{
    if (m_progress)
        m_progress->hide();
    m_renderer.closeMovie();
    emit finished(saved, m_path, reason);
}

} // namespace plyra
