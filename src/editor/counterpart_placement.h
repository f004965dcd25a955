// SPDX-License-Identifier: MIT
#pragma once

#include "model/morph_line.h"
#include "prediction/line_counterparts.h"

#include <vector>

namespace plyra {

class MorphEditorDataSource;

/// The pixel sizes of the document's images; a track without an image borrows the
/// other's, and with neither both are a unit square.
TrackSizes trackSizesOf(const MorphEditorDataSource& dataSource);

/// Predicts where points of fromTrack lie in the other track, from the given lines.
LineCounterparts counterpartsFrom(const MorphEditorDataSource& dataSource, unsigned fromTrack,
    const std::vector<MorphLine::Ptr>& knownLines);

/// Moves the selected lines' points in the other track to where the unselected lines
/// predict them from their points in fromTrack, as one undoable "Move Line". A point
/// joined to an unselected line is already known and stays.
void placeSelectionByPrediction(MorphEditorDataSource& dataSource, unsigned fromTrack);

} // namespace plyra
