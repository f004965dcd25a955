// SPDX-License-Identifier: MIT
#pragma once

#include "platform/movie/movie_playhead.h"
#include "render/windows/movie_frame_fetcher.h"
#include "render/windows/movie_frame_times.h"

#include <QSize>
#include <QTimer>
#include <QWidget>

#include <cstdint>
#include <optional>

class QLabel;
class QSlider;
class QToolButton;

namespace plyra {

class AsyncMovieWriter;
class MoviePictureView;

/// A movie player: the picture with a controller bar under it (play and pause, a step
/// back and forward, the position and the time). It decodes the movie itself with the
/// project's movie framework, also while the movie still grows, on a thread of its own:
/// the main thread never waits for a frame or for the movie's writer, and the picture
/// shows the last frame decoded until the next one is there.
/// Threads: main thread.
class MoviePlayer : public QWidget {
    Q_OBJECT

public:
    explicit MoviePlayer(QWidget* parent = nullptr);

    /// The movie to show, or none; the writer must stay alive until it is replaced.
    void setWriter(AsyncMovieWriter* writer);
    MoviePictureView* pictureView() const { return m_picture; }
    /// The height of the controller bar under the picture.
    int controllerBarHeight() const;

    void play();
    void pause();
    void togglePlay();
    bool isPlaying() const;
    void stepForward();
    void stepBackward();
    void gotoBeginning();
    /// Moves to a time (time scale 600) and shows the frame there once it can be read.
    void setCurrentTime(std::int64_t time);
    std::int64_t currentTime() const;
    std::int64_t duration() const { return m_source.duration(); }
    /// The frame on screen, if any.
    std::optional<std::size_t> shownFrame() const { return m_shown; }

    /// Whether the picture keeps the movie's proportions or fills the view.
    void setPreservesAspectRatio(bool preserve);

    /// Reads the movie again and shows the frame of the current time.
    void refresh();

    QToolButton* playButton() const { return m_playButton; }
    QSlider* positionSlider() const { return m_position; }
    QLabel* timeLabel() const { return m_time; }

protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* buildControllerBar();
    void updateControls();
    void sliderMoved(int value);
    void settlePlayhead();
    void requestShownFrameAgain();
    /// Shows the frame of the current time as the frame times stand.
    void showCurrentFrame();
    /// Asks the fetcher for a frame at the picture's size.
    void requestFrame(std::size_t index);

    void frameDecoded(int generation, int index, const QImage& image);

    MovieFrameTimes m_source;
    MovieFrameFetcher m_fetcher;
    MoviePlayhead m_playhead;
    QTimer m_clock;
    std::optional<std::size_t> m_shown;
    std::optional<std::size_t> m_requested;
    // How the picture wanted the frame when it was asked for.
    QSize m_requestedSize;
    bool m_requestedPreservingAspect = true;
    MoviePictureView* m_picture = nullptr;
    QWidget* m_bar = nullptr;
    QToolButton* m_playButton = nullptr;
    QToolButton* m_backButton = nullptr;
    QToolButton* m_forwardButton = nullptr;
    QSlider* m_position = nullptr;
    QLabel* m_time = nullptr;
};

} // namespace plyra
