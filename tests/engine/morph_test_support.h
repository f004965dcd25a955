// SPDX-License-Identifier: MIT
#pragma once

// Lines and fields for the engine's tests: lines built point by point, and the warp field
// of a frame computed on the calling thread.

#include "engine/morph_calculation_job.h"
#include "engine/morpher.h"
#include "model/morph_line.h"

#include <cmath>
#include <cstddef>
#include <vector>

namespace plyra::test {

inline MorphLine::Ptr makeLine(Point start0, Point end0, Point start1, Point end1)
{
    MorphLine::Ptr line = MorphLine::create();
    line->setStartPoint(start0, 0, nullptr);
    line->setEndPoint(end0, 0, nullptr);
    line->setStartPoint(start1, 1, nullptr);
    line->setEndPoint(end1, 1, nullptr);
    return line;
}

/// A line that lies at the same place on both images.
inline MorphLine::Ptr staticLine(Point start, Point end)
{
    return makeLine(start, end, start, end);
}

inline MorphLine::Ptr withDissolve(MorphLine::Ptr line, float start, float end)
{
    line->setDissolveEndTime(end, nullptr);
    line->setDissolveStartTime(start, nullptr);
    return line;
}

/// One grid node as the field stores it, with the last float decoded.
struct Node {
    float x0;
    float y0;
    float x1;
    float packed;

    float row() const { return std::floor(packed); }
    float dissolve() const { return 2.0f * (packed - std::floor(packed)); }
};

/// The warp field of one frame, computed on this thread through a morpher.
struct ComputedField {
    MorphCalculationJob::Ptr job;
    GridSize grid;
    std::vector<float> coords;

    Node node(std::size_t i, std::size_t j) const
    {
        const float* c = coords.data() + 4 * (j * grid.nx + i);
        return {c[0], c[1], c[2], c[3]};
    }
};

inline ComputedField computeField(const std::vector<MorphLine::Ptr>& lines, float t, float width,
                                  float height, float interval)
{
    const Morpher::Ptr morpher = Morpher::create(Image(), Image(), lines);
    ComputedField field;
    field.job = MorphCalculationJob::create(t, {width, height}, interval);
    morpher->processMorphCalculationJob(*field.job);
    field.grid = field.job->gridSize();
    field.coords = field.job->coords();
    return field;
}

} // namespace plyra::test
