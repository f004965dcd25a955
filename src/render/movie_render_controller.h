// SPDX-License-Identifier: MIT
#pragma once

#include "platform/movie/movie.h"
#include "render/render_controller.h"

#include <QString>

#include <chrono>
#include <memory>
#include <string>

namespace plyra {

/// Renders the morph as a movie: a new movie in a temporary file under /tmp before
/// every render, finished frames appended strictly in frame order with the document's
/// codec and quality, and a self-contained copy written on save.
/// Threads: main thread.
class MovieRenderController : public RenderController {
public:
    explicit MovieRenderController(MorphDocument& document);
    ~MovieRenderController() override;

    /// Most time one tick spends appending frames, so that the interface stays responsive.
    void setAppendBudget(std::chrono::milliseconds budget) { m_appendBudget = budget; }
    /// The codec and quality appended frames get; the document's unless set.
    void setCodec(std::optional<std::string> code) { m_codec = std::move(code); }
    void setQuality(std::optional<int> quality) { m_quality = quality; }
    std::string codec() const;
    int quality() const;

    /// A new temporary movie, then the jobs. False when there is no image or the
    /// temporary movie cannot be made (the reason is logged).
    bool recalc() override;
    int framesAppended() const { return m_framesAppended; }
    const Movie* movie() const { return m_movie.get(); }
    const std::string& tempPath() const { return m_tempPath; }

    /// Writes a self-contained copy of the movie; false with the reason when the movie is
    /// not complete or cannot be written. A failed save leaves nothing at path.
    bool saveRenderedMovie(const QString& path, QString* error = nullptr);
    /// Removes the temporary file.
    void cleanUpTempPaths();

protected:
    void consumeFinishedJobs() override;

private:
    bool makeTemporaryMovie();
    bool appendFrame(const MorphCalculationJob::Ptr& job);

    std::unique_ptr<Movie> m_movie;
    std::string m_tempPath;
    std::optional<std::string> m_codec;
    std::optional<int> m_quality;
    std::chrono::milliseconds m_appendBudget{300};
    int m_framesAppended = 0;
    bool m_appendFailed = false;
};

} // namespace plyra
