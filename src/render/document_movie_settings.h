// SPDX-License-Identifier: MIT
#pragma once

#include "model/movie_settings.h"

namespace plyra {

class MorphDocument;
class RenderController;

/// The movie a document asks for: its own settings, or those of a new movie window when
/// it has none.
MovieSettings documentMovieSettings(const MorphDocument& document);

/// Gives a render the movie settings: frame count and rate, span and direction, timing,
/// the ratio mode, and the fixed frame size unless the frames follow the window.
void applyMovieSettings(const MovieSettings& movie, RenderController& controller);

} // namespace plyra
