// SPDX-License-Identifier: MIT
#pragma once

#include "model/geometry.h"
#include "model/morph_line.h"
#include "prediction/counterpart_predictor.h"

#include <vector>

namespace plyra {

/// The pixel sizes of the two tracks' images.
/// Threads: a value; any thread.
struct TrackSizes {
    PixelSize track0;
    PixelSize track1;

    /// Track 0 for 0, track 1 for any other value.
    const PixelSize& of(unsigned track) const { return track == 0 ? track0 : track1; }
};

/// The points of line pairs as point pairs from one track to the other, in pixels: the
/// start and end point of every line (a point that joined lines share comes twice; the
/// predictor keeps each pair once).
std::vector<PointPair> linePointPairs(const std::vector<MorphLine::Ptr>& lines, unsigned fromTrack,
    const TrackSizes& sizes);

/// Predicts, in unit image coordinates, where a point of one track lies in the other,
/// from the line pairs already known: the points are scaled by each image's pixel size,
/// so images of different aspect are handled, and the spline needs four pairs or more.
/// Threads: immutable after construction; any thread (the lines are read only while
/// constructing).
class LineCounterparts {
public:
    LineCounterparts(const std::vector<MorphLine::Ptr>& knownLines, unsigned fromTrack, const TrackSizes& sizes);

    /// The predicted counterpart of a point of the from-track, inside the other image.
    Point counterpart(Point unit) const;
    CounterpartPredictor::Model model() const { return m_predictor.model(); }

private:
    PixelSize m_from;
    PixelSize m_to;
    CounterpartPredictor m_predictor;
};

} // namespace plyra
