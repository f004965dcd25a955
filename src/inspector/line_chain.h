// SPDX-License-Identifier: MIT
#pragma once

#include "model/morph_line.h"

#include <vector>

namespace plyra {

// Chains of selected lines, as the timing inspector treats them: one stroke whose move
// times are those of its first start point and its last end point, spread evenly over
// the lines in between. Chains are open (no line reaches itself); the walks below still
// stop should they come back to where they started.

/// Whether b follows a along the links at the end (a itself does not count).
bool isLineDownChain(const MorphLine& a, const MorphLine& b);

enum class ChainOrder { Ascending, Same, Descending };

/// Ascending when b follows a down its chain, Descending when a follows b, Same otherwise
/// (lines of different chains compare the same).
ChainOrder compareLinesAlongChain(const MorphLine& a, const MorphLine& b);

/// How many lines follow a along its end links without a gap, all of them in selection:
/// 0 when a's next line is missing or not selected, 1 when only that one is, and so on.
int countSelectedSuccessors(const MorphLine& a, const std::vector<MorphLine::Ptr>& selection);

/// The lines in chain order: the lines of one chain together and in the order of their
/// links (never a line after one that follows it, by compareLinesAlongChain), chains in
/// the order in which their first selected line appears, lines of no chain where they are.
std::vector<MorphLine::Ptr> sortLinesAlongChain(const std::vector<MorphLine::Ptr>& lines);

/// The four move times of a stroke, or of one line of it.
struct MoveTimes {
    float startBegin = 0.0f;
    float startStop = 1.0f;
    float endBegin = 0.0f;
    float endStop = 1.0f;
};

/// The move times of the k-th of n lines of a stroke whose first start point and last
/// end point have the given times: its start point is k/n, its end point (k+1)/n of the
/// way from the start times to the end times, in single precision.
MoveTimes spreadAlongChain(const MoveTimes& stroke, int k, int n);

} // namespace plyra
