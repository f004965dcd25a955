// SPDX-License-Identifier: MIT
#pragma once

#include "platform/movie/movie.h"
#include "render/async_movie_writer.h"
#include "render/frame_conversion_queue.h"
#include "render/movie_output.h"
#include "render/render_controller.h"

#include <QString>

#include <atomic>
#include <chrono>
#include <memory>
#include <string>

namespace plyra {

/// Renders the morph as a movie: a new movie in a temporary file under /tmp before
/// every render, finished frames appended strictly in frame order with the document's
/// codec and quality, and a self-contained copy written on save. A tick hands finished
/// jobs over in order; a conversion queue renders them into frames and an asynchronous
/// writer compresses them, each on a thread of its own, so that the polling thread never
/// renders a whole frame and the morph, the rendering and the encoder work at the same
/// time. Memory does not grow
/// with the number of frames: the morpher gets only a few jobs ahead of the frames
/// appended, at most a few frames wait for the encoder (a tick takes no more jobs while
/// they do), and the first failed append (a full disk) ends the render with its reason.
/// The render is saved as a QuickTime movie, an animated GIF or a numbered image
/// sequence, by the path; for the last two the temporary movie keeps the frames
/// losslessly (Animation codec) when the output kind is set before the render.
/// Threads: main thread.
class MovieRenderController : public RenderController {
public:
    /// Where the temporary movies are made: "/tmp/Plyra_PID-TICKS_XXXXXX", named after
    /// the process, so that a later start can remove those of a process that was killed.
    static constexpr const char* kTemporaryMovieFolder = "/tmp/";
    static constexpr const char* kTemporaryMoviePrefix = "Plyra_";

    explicit MovieRenderController(MorphDocument& document);
    ~MovieRenderController() override;

    /// Most time one tick spends appending frames, so that the interface stays responsive.
    void setAppendBudget(std::chrono::milliseconds budget) { m_appendBudget = budget; }
    /// The codec and quality appended frames get: the document's unless set, and the
    /// lossless Animation codec at the highest quality for a GIF or an image sequence.
    void setCodec(std::optional<std::string> code) { m_codec = std::move(code); }
    void setQuality(std::optional<int> quality) { m_quality = quality; }
    std::string codec() const;
    int quality() const;
    /// What the render will be saved as; takes effect at the next recalc.
    void setOutputKind(MovieOutputKind kind) { m_outputKind = kind; }
    MovieOutputKind outputKind() const { return m_outputKind; }

    /// A new temporary movie, then the jobs. False, with the reason in errorString(), when
    /// the codec cannot compress frames of the frame size, the temporary movie cannot be
    /// made or there is no image: all found before any frame is computed.
    bool recalc() override;
    /// Why the last recalc or the render failed; empty while nothing has.
    const QString& errorString() const { return m_error; }
    /// Frames handed to the movie so far (some may still be rendered or compressed).
    int framesAppended() const { return m_framesAppended; }
    /// The movie, once every frame handed over has been compressed into it.
    const Movie* movie();
    const std::string& tempPath() const { return m_tempPath; }

    /// Writes the movie in the form its path asks for (movieOutputKindForPath): a
    /// self-contained QuickTime movie, an animated GIF at the render's frame rate, or one
    /// file per frame. False with the reason when the movie is not complete or cannot be
    /// written; a failed save leaves nothing at path (or at any frame's name).
    bool saveRenderedMovie(const QString& path, QString* error = nullptr);
    /// Removes the temporary file.
    void cleanUpTempPaths();
    /// Stops rendering, closes the movie and its storage and removes the temporary file.
    void closeMovie();
    /// The writer that holds the movie while it grows, for showing it without waiting
    /// (take its lock with tryLock()); null when there is no movie.
    AsyncMovieWriter* writer() const { return m_writer.get(); }

protected:
    void consumeFinishedJobs() override;
    std::size_t maxJobsAhead() override;

private:
    bool checkCompression();
    bool makeTemporaryMovie();
    // Runs on the conversion thread.
    void appendFrame(std::optional<Bitmap> bitmap, const MovieTime& duration, const AddImageAttributes& attributes);
    unsigned framesWaiting() const;
    bool stopOnWriterFailure();
    bool writeMovieAs(MovieOutputKind kind, const QString& path, const QString& target, QString* error);

    std::unique_ptr<AsyncMovieWriter> m_writer;
    // Declared after the writer, so that it stops before the writer goes.
    std::unique_ptr<FrameConversionQueue> m_conversions;
    std::string m_tempPath;
    std::optional<std::string> m_codec;
    std::optional<int> m_quality;
    MovieOutputKind m_outputKind = MovieOutputKind::QuickTime;
    std::chrono::milliseconds m_appendBudget{300};
    int m_framesAppended = 0;
    // Enough for the frames that finish between two ticks of an interface's 0.1 s poll.
    static constexpr unsigned kMaxFramesWaiting = 4;
    std::atomic<bool> m_appendFailed{false};
    QString m_error;
    std::string m_checkedCompression; // the codec, quality and size last found to work
};

} // namespace plyra
