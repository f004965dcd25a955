// SPDX-License-Identifier: MIT
#include "render/windows/movie_player.h"

#include "render/windows/movie_picture_view.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLocale>
#include <QSignalBlocker>
#include <QSlider>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

namespace plyra {
namespace {

// Often enough to show every frame of a fast movie on time.
constexpr int kClockIntervalMs = 15;

QString timeText(std::int64_t value, const QLocale& locale)
{
    const double seconds = static_cast<double>(value) / kMovieTimeScale;
    const int minutes = static_cast<int>(seconds / 60.0);
    const QString rest = locale.toString(seconds - minutes * 60.0, 'f', 2);
    return QStringLiteral("%1:%2").arg(minutes).arg(rest, 5, QLatin1Char('0'));
}

QToolButton* barButton(QStyle::StandardPixmap icon, const QString& name, QWidget* parent)
{
    auto* button = new QToolButton(parent);
    button->setIcon(parent->style()->standardIcon(icon));
    button->setToolTip(name);
    button->setAccessibleName(name);
    button->setAutoRaise(true);
    return button;
}

} // namespace

MoviePlayer::MoviePlayer(QWidget* parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("movieView"));
    setAccessibleName(tr("Movie player"));
    setFocusPolicy(Qt::StrongFocus);
    m_picture = new MoviePictureView(this);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_picture, 1);
    m_bar = buildControllerBar();
    layout->addWidget(m_bar);
    m_clock.setInterval(kClockIntervalMs);
    connect(&m_clock, &QTimer::timeout, this, &MoviePlayer::refresh);
    connect(&m_fetcher, &MovieFrameFetcher::frameDecoded, this, &MoviePlayer::frameDecoded);
    m_picture->installEventFilter(this);
    updateControls();
}

QWidget* MoviePlayer::buildControllerBar()
{
    auto* bar = new QWidget(this);
    bar->setObjectName(QStringLiteral("controllerBar"));
    bar->setAccessibleName(tr("Movie controls"));
    auto* row = new QHBoxLayout(bar);
    row->setContentsMargins(4, 2, 6, 2);
    m_playButton = barButton(QStyle::SP_MediaPlay, tr("Play"), bar);
    m_backButton = barButton(QStyle::SP_MediaSeekBackward, tr("Step backward"), bar);
    m_forwardButton = barButton(QStyle::SP_MediaSeekForward, tr("Step forward"), bar);
    m_position = new QSlider(Qt::Horizontal, bar);
    m_position->setAccessibleName(tr("Position"));
    m_position->setFocusPolicy(Qt::NoFocus);
    m_time = new QLabel(bar);
    m_time->setAccessibleName(tr("Time"));
    m_time->setMinimumWidth(m_time->fontMetrics().horizontalAdvance(QStringLiteral("00:00.00 / 00:00.00")));
    for (QWidget* widget : std::initializer_list<QWidget*>{m_playButton, m_backButton, m_forwardButton})
        row->addWidget(widget);
    row->addWidget(m_position, 1);
    row->addWidget(m_time);
    connect(m_playButton, &QToolButton::clicked, this, &MoviePlayer::togglePlay);
    connect(m_backButton, &QToolButton::clicked, this, &MoviePlayer::stepBackward);
    connect(m_forwardButton, &QToolButton::clicked, this, &MoviePlayer::stepForward);
    connect(m_position, &QSlider::valueChanged, this, &MoviePlayer::sliderMoved);
    return bar;
}

int MoviePlayer::controllerBarHeight() const
{
    return m_bar->sizeHint().height();
}

void MoviePlayer::setWriter(AsyncMovieWriter* writer)
{
    m_fetcher.setWriter(writer);
    m_source.setWriter(writer);
    m_requested.reset();
    m_playhead.stop(0);
    m_playhead.gotoBeginning();
    m_shown.reset();
    m_picture->setImage(QImage());
    refresh();
}

void MoviePlayer::play()
{
    m_source.refresh();
    m_playhead.play(m_source.duration());
    m_clock.start();
    updateControls();
}

void MoviePlayer::pause()
{
    m_playhead.stop(m_source.duration());
    refresh();
}

void MoviePlayer::togglePlay()
{
    isPlaying() ? pause() : play();
}

bool MoviePlayer::isPlaying() const
{
    return m_playhead.isPlaying(m_source.duration());
}

void MoviePlayer::stepForward()
{
    m_source.refresh();
    m_playhead.stepForward(m_source.frameTimes(), m_source.duration());
    showCurrentFrame();
}

void MoviePlayer::stepBackward()
{
    m_source.refresh();
    m_playhead.stepBackward(m_source.frameTimes(), m_source.duration());
    showCurrentFrame();
}

void MoviePlayer::gotoBeginning()
{
    m_playhead.gotoBeginning();
    refresh();
}

void MoviePlayer::settlePlayhead()
{
    // A movie that has played to its end stops there, so that moving it later does not
    // set it playing again.
    if (!isPlaying())
        m_playhead.stop(m_source.duration());
}

void MoviePlayer::setCurrentTime(std::int64_t time)
{
    m_source.refresh();
    settlePlayhead();
    m_playhead.setCurrentTime(time, m_source.duration());
    showCurrentFrame();
}

std::int64_t MoviePlayer::currentTime() const
{
    return m_playhead.currentTime(m_source.duration());
}

void MoviePlayer::refresh()
{
    m_source.refresh();
    showCurrentFrame();
}

void MoviePlayer::showCurrentFrame()
{
    settlePlayhead();
    const std::optional<std::size_t> wanted = m_source.frameIndexAt(currentTime());
    if (wanted && wanted != m_shown && wanted != m_requested)
        requestFrame(*wanted);
    if (isPlaying())
        m_clock.start();
    else
        m_clock.stop();
    updateControls();
}

void MoviePlayer::frameDecoded(int generation, int index, const QImage& image)
{
    if (generation != m_fetcher.generation() || !m_requested || static_cast<int>(*m_requested) != index)
        return; // a frame of an earlier movie or request
    m_requested.reset();
    if (image.isNull())
        return;
    m_picture->setImage(image);
    m_shown = static_cast<std::size_t>(index);
    // Resized (or its aspect rule changed) while this frame was being made: it is
    // wanted again as the picture is now.
    if (m_requestedSize != m_picture->size() || m_requestedPreservingAspect != m_picture->preservesAspectRatio())
        requestShownFrameAgain();
}

void MoviePlayer::requestFrame(std::size_t index)
{
    m_requested = index;
    m_requestedSize = m_picture->size();
    m_requestedPreservingAspect = m_picture->preservesAspectRatio();
    m_fetcher.request(static_cast<int>(index), m_requestedSize, m_requestedPreservingAspect);
}

void MoviePlayer::updateControls()
{
    const bool playing = isPlaying();
    m_playButton->setIcon(style()->standardIcon(playing ? QStyle::SP_MediaPause : QStyle::SP_MediaPlay));
    m_playButton->setAccessibleName(playing ? tr("Pause") : tr("Play"));
    m_playButton->setToolTip(m_playButton->accessibleName());
    const bool hasFrames = !m_source.frameTimes().empty();
    for (QWidget* control : std::initializer_list<QWidget*>{m_playButton, m_backButton, m_forwardButton, m_position})
        control->setEnabled(hasFrames);
    const QSignalBlocker blocker(m_position);
    m_position->setRange(0, static_cast<int>(m_source.duration()));
    m_position->setValue(static_cast<int>(currentTime()));
    m_time->setText(tr("%1 / %2").arg(timeText(currentTime(), locale()), timeText(m_source.duration(), locale())));
}

void MoviePlayer::sliderMoved(int value)
{
    setCurrentTime(value);
}

bool MoviePlayer::eventFilter(QObject* watched, QEvent* event)
{
    // Frames come scaled for the picture: a new size wants the frame again at that size.
    if (watched == m_picture && event->type() == QEvent::Resize)
        requestShownFrameAgain();
    return QWidget::eventFilter(watched, event);
}

void MoviePlayer::requestShownFrameAgain()
{
    if (!m_shown || m_requested)
        return;
    requestFrame(*m_shown);
}

void MoviePlayer::setPreservesAspectRatio(bool preserve)
{
    if (preserve == m_picture->preservesAspectRatio())
        return;
    m_picture->setPreservesAspectRatio(preserve);
    requestShownFrameAgain();
}

void MoviePlayer::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Space:
        togglePlay();
        return;
    case Qt::Key_Right:
        stepForward();
        return;
    case Qt::Key_Left:
        stepBackward();
        return;
    case Qt::Key_Home:
        gotoBeginning();
        return;
    default:
        QWidget::keyPressEvent(event);
    }
}

} // namespace plyra
