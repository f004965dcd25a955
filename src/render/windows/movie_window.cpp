// SPDX-License-Identifier: MIT
#include "render/windows/movie_window.h"

#include "model/morph_document.h"
#include "platform/qt/user_defaults.h"
#include "platform/qt/user_defaults_keys.h"
#include "render/document_movie_settings.h"
#include "render/movie_codecs.h"
#include "render/movie_render_controller.h"
#include "render/windows/movie_export.h"
#include "render/windows/movie_picture_view.h"
#include "render/windows/movie_player.h"
#include "render/windows/movie_settings_sheet.h"
#include "render/windows/render_toolbar.h"
#include "widgets/screen_fit.h"

#include <QDir>
#include <QFileInfo>
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

void MovieWindow::takeDocumentSettings()
{
    // A document with settings of its own renders its movie; one that lost them (an
    // undone change) goes back to the defaults.
    if (!document().movieSettings() && !m_followsDocument)
        return;
    m_followsDocument = document().movieSettings().has_value();
    applyMovieSettings(documentMovieSettings(document()), controller());
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
        m_player->setCurrentTime(duration > 0 ? renderer().schedule().movieFrameStart(static_cast<std::size_t>(appended - 1)) : 0);
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
    m_sheet->loadTiming(controller().timing());
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
    if (controller().setTiming(m_sheet->timing()))
        delayedRecalc();
    // The document keeps the movie, so that opening it again renders the same one.
    const SheetSettings values = m_sheet->values();
    MovieSettings movie = documentMovieSettings(document());
    movie.numberOfFrames = values.numberOfFrames.value_or(movie.numberOfFrames);
    movie.framesPerSecond = values.framesPerSecond.value_or(movie.framesPerSecond);
    movie.reverse = values.reverse.value_or(movie.reverse);
    movie.sizeToView = values.sizeToView;
    movie.frameRatioMode = static_cast<std::int32_t>(values.frameRatioMode);
    movie.frameWidth = static_cast<float>(values.frameWidth);
    movie.frameHeight = static_cast<float>(values.frameHeight);
    const MorphTimeRange range = controller().settings().timeRange();
    movie.rangeLocation = range.location;
    movie.rangeLength = range.length;
    movie.timing = m_sheet->timing();
    document().setMovieSettings(movie);
    updateAspectMode();
}

void MovieWindow::updateAspectMode()
{
    m_player->setPreservesAspectRatio(frameRatioMode() != FrameRatioMode::Free);
}

SaveFileTypes MovieWindow::saveFileTypes() const
{
    // The saved movie's kind follows the name; the last choice is a folder of frames.
    return {QStringLiteral("mov"),
        {QStringLiteral("mp4"), QStringLiteral("webm"), QStringLiteral("gif"), QStringLiteral("webp")},
        {tr("QuickTime movie (*.mov)"), tr("MPEG-4 movie, H.264 (*.mp4)"), tr("WebM movie, VP9 (*.webm)"),
            tr("Animated GIF, looping (*.gif)"), tr("Animated WebP, looping (*.webp)"),
            tr("Image sequence, a folder of numbered PNG frames (*)")},
        5};
}

QString MovieWindow::sequencePatternForFolder(const QString& folder, std::size_t frameCount)
{
    const QString name = QFileInfo(folder).fileName();
    const int digits = std::max(4, static_cast<int>(QString::number(static_cast<qulonglong>(frameCount)).size()));
    QString escaped = name;
    escaped.replace(QLatin1Char('%'), QLatin1String("%%"));
    return QDir(folder).filePath(escaped + QStringLiteral("_%0") + QString::number(digits) + QStringLiteral("d.png"));
}

bool MovieWindow::saveRenderedFramesToPath(const QString& path, QString* error)
{
    QString output = path;
    if (path.endsWith(QLatin1Char('/'))) {
        // A folder of frames, named without the movie's extension the dialog suggested.
        QString folder = path.chopped(1);
        if (movieOutputKindForPath(folder))
            folder = QFileInfo(folder).dir().filePath(QFileInfo(folder).completeBaseName());
        if (!QDir().mkpath(folder)) {
            *error = tr("The folder “%1” cannot be made.").arg(folder);
            return false;
        }
        output = sequencePatternForFolder(folder, renderer().schedule().sequenceFileCount());
    }
    const std::optional<MovieOutputKind> kind = movieOutputKindForPath(output, error);
    if (!kind)
        return false;
    if (!renderer().canSaveAs(*kind))
        return startExport(output, error);
    const bool saved = renderer().saveRenderedMovie(output, error);
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

bool MovieWindow::startExport(const QString& path, QString* error)
{
    if (m_export)
        m_export->deleteLater();
    m_export = new MovieExport(renderer(), this);
    connect(m_export, &MovieExport::finished, this, &MovieWindow::exportFinished);
    if (m_export->start(path, error))
        return true;
    m_export->deleteLater();
    m_export = nullptr;
    return false;
}

void MovieWindow::exportFinished(bool saved, const QString& path, const QString& reason)
{
    m_export->deleteLater();
    m_export = nullptr;
    m_saved = m_saved || saved;
    if (!saved && !reason.isEmpty())
        RenderSaveDialog::showSaveFailedAlert(this, path, reason);
}

void MovieWindow::windowClosed()
{
    if (m_export)
        m_export->deleteLater();
    m_export = nullptr;
    m_player->pause();
    m_player->setWriter(nullptr);
    renderer().closeMovie();
}

} // namespace plyra
