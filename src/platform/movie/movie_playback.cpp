// SPDX-License-Identifier: MIT
// The playback operations of Movie: the playhead runs on the movie's duration and the
// frame times of its last video track.
#include "platform/movie/movie.h"

#include "platform/movie/movie_frame_decoder.h"

namespace plyra {

MovieTime Movie::currentTime() const
{
    return {m_playhead.currentTime(duration().value), kMovieTimeScale, 0};
}

void Movie::setCurrentTime(const MovieTime& time)
{
    m_playhead.setCurrentTime(time.valueIn(kMovieTimeScale), duration().value);
}

bool Movie::isPlaying() const
{
    return m_playhead.isPlaying(duration().value);
}

void Movie::play()
{
    m_playhead.play(duration().value);
}

void Movie::stop()
{
    m_playhead.stop(duration().value);
}

void Movie::gotoBeginning()
{
    m_playhead.gotoBeginning();
}

void Movie::gotoEnd()
{
    m_playhead.gotoEnd(duration().value);
}

void Movie::gotoPosterTime()
{
    m_playhead.gotoPosterTime(duration().value);
}

void Movie::gotoNextSelectionPoint()
{
    m_playhead.gotoNextSelectionPoint(duration().value);
}

void Movie::gotoPreviousSelectionPoint()
{
    m_playhead.gotoPreviousSelectionPoint(duration().value);
}

void Movie::stepForward()
{
    m_playhead.stepForward(frameTimes(), duration().value);
}

void Movie::stepBackward()
{
    m_playhead.stepBackward(frameTimes(), duration().value);
}

MovieTimeRange Movie::selection() const
{
    return {{m_playhead.selectionStart(), kMovieTimeScale, 0}, {m_playhead.selectionDuration(), kMovieTimeScale, 0}};
}

void Movie::setSelection(const MovieTimeRange& selection)
{
    m_playhead.setSelection(selection.time.valueIn(kMovieTimeScale), selection.duration.valueIn(kMovieTimeScale));
}

MovieTime Movie::posterTime() const
{
    return {m_playhead.posterTime(), kMovieTimeScale, 0};
}

void Movie::setPosterTime(const MovieTime& time)
{
    m_playhead.setPosterTime(time.valueIn(kMovieTimeScale));
}

std::vector<int64_t> Movie::frameTimes(size_t from) const
{
    std::vector<int64_t> times;
    const MovieTrack* track = lastVideoTrack();
    if (!track || !track->media() || from >= track->media()->sampleCount())
        return times;
    const MovieMedia& media = *track->media();
    times.reserve(media.sampleCount() - from);
    for (size_t i = from; i < media.sampleCount(); ++i)
        times.push_back(MovieTime{media.sample(i).time, media.timeScale(), 0}.valueIn(kMovieTimeScale));
    return times;
}

std::optional<RgbaImage> Movie::frameImageAtTime(const MovieTime& time) const
{
    const MovieTrack* track = lastVideoTrack();
    if (!track || !track->media())
        return std::nullopt;
    const MovieMedia& media = *track->media();
    const std::optional<size_t> index = media.sampleIndexAtTime(time.valueIn(media.timeScale()));
    if (!index)
        return std::nullopt;
    MovieFrameDecoder decoder(media);
    return decoder.decode(*index);
}

} // namespace plyra
