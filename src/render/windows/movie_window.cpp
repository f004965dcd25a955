// SPDX-License-Identifier: MIT
#include "render/windows/movie_window.h"

#include "model/morph_document.h"
#include "platform/qt/user_defaults.h"
#include "platform/qt/user_defaults_keys.h"
#include "render/movie_codecs.h"
#include "render/movie_render_controller.h"
#include "render/windows/movie_picture_view.h"
#include "render/windows/movie_player.h"
#include "render/windows/movie_settings_sheet.h"
#include "render/windows/render_toolbar.h"
#include "widgets/screen_fit.h"

#include <QGuiApplication>
#include <QScreen>

#include <cmath>

namespace plyra {

MovieWindow::MovieWindow(MorphDocument& document, QWidget* parent)
    : MovieWindow(document, new MovieRenderController(document), parent)
{
}

MovieWindow::MovieWindow(MorphDocument& document, MovieRenderController* renderer, QWidget* parent)
    : RenderWindow(document, std::unique_ptr<RenderController>(renderer), QStringLiteral("MorphMovieController"), parent)
    , m_renderer(*renderer)
{
    setObjectName(QStringLiteral("movieWindow"));
    setAccessibleName(tr("Rendered movie"));
    m_player = new MoviePlayer(this);
    setCentralWidget(m_player);
    setResultView(m_player->pictureView());
    // The movie's own size when the document has one, else 600 × 400; nothing is laid
    // out yet, so the window's size is put together from the size hints.
    const FrameSize movieSize = frameSize();
    const QSize picture = movieSize.isSet() ? fittedPictureSize(movieSize) : QSize(600, 400);
    resize(picture.width(), picture.height() + m_player->controllerBarHeight() + toolbar()->sizeHint().height());
    refreshTitle();
}

MovieWindow::~MovieWindow()
{
    m_player->setWriter(nullptr);
}

QSize MovieWindow::viewSize() const
{
    return m_player->pictureView()->size();
}

QSize MovieWindow::fittedPictureSize(FrameSize movieSize) const
{
    // The movie's pixels are device pixels: on a screen of two per unit, half as many units.
    QSize picture = (QSizeF(movieSize.width, movieSize.height) / devicePixelRatioF()).toSize();
    // A movie larger than the screen is shown scaled down rather than off the screen.
    if (const QScreen* screen = this->screen() ? this->screen() : QGuiApplication::primaryScreen()) {
        const QSize room = screen->availableSize() * 0.75;
        if (picture.width() > room.width() || picture.height() > room.height())
            picture = picture.scaled(room, Qt::KeepAspectRatio);
    }
    return picture;
}

void MovieWindow::sizeWindowToMovie()
{
    const FrameSize movieSize = frameSize();
    if (!movieSize.isSet())
        return;
    const QSize before = size();
    resize(before + (fittedPictureSize(movieSize) - m_player->pictureView()->size()));
    // Every render asks: a window that keeps its size (it is the movie's already, or the
    // toolbar keeps it wider) stays where the user put it.
    if (isVisible() && size() != before)
        ScreenFit::fit(this);
}

void MovieWindow::screenChanged()
{
    // A movie of a fixed size covers another number of units there, and another share
    // of the screen.
    if (sizesToView())
        RenderWindow::screenChanged();
    else
        sizeWindowToMovie();
}

bool MovieWindow::startRender()
{
    // The player lets go of the old movie before it is closed.
    m_player->setWriter(nullptr);
    const bool started = renderer().recalc();
    m_framesShown = 0;
    m_complete = false;
    m_saved = false;
    m_player->setWriter(renderer().writer());
    // Found before any frame is computed: a codec that cannot take this size, no room
    // for the temporary movie.
    const QString reason = renderer().errorString();
    m_player->pictureView()->setMessage(
        started || reason.isEmpty() ? QString() : tr("The movie cannot be rendered: %1").arg(reason));
    updateAspectMode();
    if (!sizesToView())
        sizeWindowToMovie();
    return started;
}

void MovieWindow::showPolledResults()
{
    const int appended = renderer().framesAppended();
    if (appended != m_framesShown) {
        m_framesShown = appended;
        // The view steps to the newest frame; with frames of no duration it stays at the start.
        const std::int64_t duration = frameDurationValue(renderer().settings().framesPerSecond());
        m_player->setCurrentTime(duration > 0 ? (appended - 1) * duration : 0);
        refreshTitle();
    }
    if (renderer().morphJobs().empty() && !m_complete) {
        m_complete = true;
        refreshTitle();
        // A render that stopped at a failed write (a full disk) says so over what it made.
        const QString reason = renderer().errorString();
        if (!reason.isEmpty())
            m_player->pictureView()->setMessage(tr("The movie could not be completed: %1").arg(reason));
        m_player->gotoBeginning();
        m_player->play();
    }
}

QString MovieWindow::windowTitleForDocumentDisplayName(const QString& name) const
{
    return titleForProgress(name, renderer().progress());
}

QString MovieWindow::titleForProgress(const QString& name, float progress)
{
    if (progress < 0.99999f)
        return tr("%1 rendering movie (%2%)").arg(name, QString::number(static_cast<double>(progress) * 100.0, 'f', 0));
    return tr("%1 rendered movie").arg(name);
}

RenderSettingsSheet* MovieWindow::createSettingsSheet()
{
    m_sheet = new MovieSettingsSheet(this);
    return m_sheet;
}

void MovieWindow::prepareSettingsSheet()
{
    m_sheet->loadCodec(document().codecFormat(), document().codecQuality());
}

void MovieWindow::applySheetSettings()
{
    const QString codec = m_sheet->codecFormat();
    const int quality = m_sheet->codecQuality();
    document().setCodecFormat(codec);
    document().setCodecQuality(quality);
    // New documents start with the last choice.
    UserDefaults::standard().setObject(QLatin1String(DefaultsKey::kCodecFormat), codec);
    UserDefaults::standard().setInteger(QLatin1String(DefaultsKey::kCodecQuality), quality);
    RenderWindow::applySheetSettings();
    updateAspectMode();
}

void MovieWindow::updateAspectMode()
{
    m_player->setPreservesAspectRatio(frameRatioMode() != FrameRatioMode::Free);
}

SaveFileTypes MovieWindow::saveFileTypes() const
{
    // The saved movie's kind follows the name: a QuickTime movie, or an animated GIF made
    // from the same compressed frames.
    return {QStringLiteral("mov"), {QStringLiteral("gif")},
        {tr("QuickTime movie (*.mov)"), tr("Animated GIF, looping (*.gif)")}};
}

bool MovieWindow::saveRenderedFramesToPath(const QString& path, QString* error)
{
    const bool saved = renderer().saveRenderedMovie(path, error);
    m_saved = m_saved || saved;
    // Saving waited for the last frames: the player may show them now.
    m_player->refresh();
    return saved;
}

bool MovieWindow::hasUnsavedResult() const
{
    return isVisible() && m_complete && !m_saved;
}

QString MovieWindow::unsavedResultQuestion(const QString& name) const
{
    return tr("Do you want to save the movie of “%1”?").arg(name);
}

void MovieWindow::windowClosed()
{
    m_player->pause();
    m_player->setWriter(nullptr);
    renderer().closeMovie();
}

} // namespace plyra
