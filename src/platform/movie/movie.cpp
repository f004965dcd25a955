// SPDX-License-Identifier: MIT
#include "platform/movie/movie.h"

#include "platform/log.h"
#include "platform/movie/movie_sample_store_internal.h"
#include "platform/user_text.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <unistd.h>
#include <vector>

namespace plyra {
namespace {

void report(MovieStatus* status, MovieStatus value)
{
    if (status)
        *status = std::move(value);
}

int16_t wholePixels(float size)
{
    if (!(size > 0))
        return 0;
    return static_cast<int16_t>(std::min(size, 32767.0f));
}

} // namespace

Movie::Movie(std::string storagePath)
    : m_storagePath(std::move(storagePath))
{
}

Movie::~Movie() = default;

std::unique_ptr<Movie> Movie::createInStorage(const std::string& path, MovieStatus* status)
{
    auto store = MovieSampleStore::createFile(path, status);
    if (!store)
        return nullptr;
    std::unique_ptr<Movie> movie(new Movie(path));
    movie->m_fileStore = std::move(store);
    return movie;
}

std::unique_ptr<Movie> Movie::createInMemory()
{
    return std::unique_ptr<Movie>(new Movie(std::string()));
}

MovieTime Movie::duration() const
{
    int64_t end = m_attributes.duration ? m_attributes.duration->valueIn(kMovieTimeScale) : 0;
    for (const auto& track : m_tracks)
        end = std::max(end, track->range().end().valueIn(kMovieTimeScale));
    return {end, kMovieTimeScale, 0};
}

MovieTrack* Movie::lastVideoTrack()
{
    for (auto it = m_tracks.rbegin(); it != m_tracks.rend(); ++it) {
        if ((*it)->mediaType() == kVideoMediaType)
            return it->get();
    }
    return nullptr;
}

const MovieTrack* Movie::lastVideoTrack() const
{
    return const_cast<Movie*>(this)->lastVideoTrack();
}

std::optional<size_t> Movie::indexOfTrack(const MovieTrack* track) const
{
    for (size_t i = 0; i < m_tracks.size(); ++i) {
        if (m_tracks[i].get() == track)
            return i;
    }
    return std::nullopt;
}

MovieTrack* Movie::newTrack(MovieSize size, int16_t volume, MovieStatus* status)
{
    const MovieSize whole{static_cast<float>(wholePixels(size.width)), static_cast<float>(wholePixels(size.height))};
    m_tracks.push_back(std::make_unique<MovieTrack>(m_nextTrackId++, kMovieTimeScale, whole, volume));
    report(status, MovieStatus::success());
    return m_tracks.back().get();
}

MovieTrack* Movie::addEmptyTrackLike(const MovieTrack& source, MediaStorage storage, MovieStatus* status)
{
    const MovieMedia* sourceMedia = source.media();
    if (!sourceMedia) {
        report(status, MovieStatus::failure(kMovieInvalidTrack, "The source track has no media"));
        return nullptr;
    }
    MovieTrack* track = newTrack(source.size(), source.volume(), status);
    MovieStatus made = track->newMedia(sourceMedia->mediaType(), sourceMedia->timeScale(), storage,
                                       sampleStore(storage));
    if (!made.ok()) {
        m_tracks.pop_back();
        report(status, std::move(made));
        return nullptr;
    }
    track->setEnabled(source.isEnabled());
    track->media()->setCodec(sourceMedia->codecType(), sourceMedia->sharedCodecParameters());
    return track;
}

std::shared_ptr<MovieSampleStore> Movie::sampleStore(MediaStorage storage)
{
    if (storage == MediaStorage::File && m_fileStore && m_fileStore->isWritable())
        return m_fileStore;
    if (!m_memoryStore)
        m_memoryStore = MovieSampleStore::createMemory();
    return m_memoryStore;
}

MovieStatus Movie::addImage(const RgbaImage& image, const MovieTime& duration,
                            const std::optional<AddImageAttributes>& attributes)
{
    MovieTrack* track = lastVideoTrack();
    if (!track) {
        if (image.isEmpty())
            return MovieStatus::failure(kMovieParamError, "The image to append is empty");
        track = newTrack({static_cast<float>(image.width()), static_cast<float>(image.height())}, 0);
        const MediaStorage storage = m_fileStore ? MediaStorage::File : MediaStorage::Memory;
        MovieStatus made = track->newMedia(kVideoMediaType, kMovieTimeScale, storage, sampleStore(storage));
        if (!made.ok())
            return made;
    }
    return track->addImage(image, duration, attributes);
}

int enterMoviesOnThread(uint32_t /*flags*/)
{
    return kMovieNoError;
}

int exitMoviesOnThread()
{
    return kMovieNoError;
}

std::string makeTemporaryMoviePath(const std::string& directory, const std::string& prefix, MovieStatus* status)
{
    std::string pattern = directory;
    if (!pattern.empty() && pattern.back() != '/')
        pattern += '/';
    pattern += prefix + "XXXXXX";
    std::vector<char> name(pattern.begin(), pattern.end());
    name.push_back('\0');
    const int fd = ::mkstemp(name.data());
    if (fd < 0) {
        const int code = errno; // before looking up the text, which may change errno
        report(status, MovieStatus::failure(kMovieFileError,
            fillIn(userText("Movie", "Could not make a temporary file in \"%1\": %2"), {directory, std::strerror(code)})));
        return {};
    }
    ::close(fd);
    report(status, MovieStatus::success());
    return name.data();
}

void Movie::finishCompression()
{
    for (const std::unique_ptr<MovieTrack>& track : m_tracks)
        track->finishCompression();
}

} // namespace plyra
