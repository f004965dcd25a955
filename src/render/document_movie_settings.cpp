// SPDX-License-Identifier: MIT
#include "render/document_movie_settings.h"

#include "model/morph_document.h"
#include "render/render_controller.h"

namespace plyra {

MovieSettings documentMovieSettings(const MorphDocument& document)
{
    return document.movieSettings().value_or(MovieSettings{});
}

void applyMovieSettings(const MovieSettings& movie, RenderController& controller)
{
    RenderSettings& settings = controller.settings();
    settings.setNumberOfFrames(movie.numberOfFrames);
    settings.setFramesPerSecond(movie.framesPerSecond);
    settings.setTimeRange({movie.rangeLocation, movie.rangeLength});
    settings.setReverse(movie.reverse);
    // The stored form keeps the mode as its number (0 to 2, checked when read).
    settings.setFrameRatioMode(static_cast<FrameRatioMode>(movie.frameRatioMode));
    settings.setSizeToView(movie.sizeToView);
    const FrameSize fixed{movie.frameWidth, movie.frameHeight};
    if (!movie.sizeToView && fixed.isSet())
        settings.setFrameSize(fixed);
    controller.setTiming(movie.timing);
}

} // namespace plyra
