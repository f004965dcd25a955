// SPDX-License-Identifier: MIT
#include "inspector/line_chain.h"

#include <algorithm>
#include <cstddef>
#include <unordered_map>

namespace plyra {
namespace {

bool contains(const std::vector<MorphLine::Ptr>& lines, const MorphLine* line)
{
    return std::any_of(lines.begin(), lines.end(), [line](const MorphLine::Ptr& l) { return l.get() == line; });
}

// The first line of the chain that holds line, and how many links lie between them.
std::pair<const MorphLine*, int> chainHead(const MorphLine& line)
{
    const MorphLine* head = &line;
    int depth = 0;
    for (MorphLine::Ptr previous = line.attachedLineAtStart(); previous && previous.get() != &line;
         previous = previous->attachedLineAtStart()) {
        head = previous.get();
        ++depth;
    }
    return {head, depth};
}

} // namespace

bool isLineDownChain(const MorphLine& a, const MorphLine& b)
{
    for (MorphLine::Ptr next = a.attachedLineAtEnd(); next; next = next->attachedLineAtEnd()) {
        if (next.get() == &b)
            return true;
        if (next.get() == &a)
            return false;
    }
    return false;
}

ChainOrder compareLinesAlongChain(const MorphLine& a, const MorphLine& b)
{
    if (isLineDownChain(a, b))
        return ChainOrder::Ascending;
    if (isLineDownChain(b, a))
        return ChainOrder::Descending;
    return ChainOrder::Same;
}

int countSelectedSuccessors(const MorphLine& a, const std::vector<MorphLine::Ptr>& selection)
{
    int count = 0;
    const int limit = static_cast<int>(selection.size());
    for (MorphLine::Ptr next = a.attachedLineAtEnd(); next && count < limit && contains(selection, next.get());
         next = next->attachedLineAtEnd())
        ++count;
    return count;
}

std::vector<MorphLine::Ptr> sortLinesAlongChain(const std::vector<MorphLine::Ptr>& lines)
{
    // Comparing with compareLinesAlongChain alone is no strict weak order (lines of
    // different chains are "the same" as everything), so a sort by it may scatter a
    // chain; ordering by (chain, place in the chain) keeps each chain together.
    struct Key {
        std::size_t chain;
        int depth;
    };
    std::unordered_map<const MorphLine*, std::size_t> chainOfHead;
    std::unordered_map<const MorphLine*, Key> keys;
    for (const MorphLine::Ptr& line : lines) {
        const auto [head, depth] = chainHead(*line);
        const auto found = chainOfHead.try_emplace(head, chainOfHead.size()).first;
        keys[line.get()] = {found->second, depth};
    }
    std::vector<MorphLine::Ptr> sorted = lines;
    std::stable_sort(sorted.begin(), sorted.end(), [&keys](const MorphLine::Ptr& a, const MorphLine::Ptr& b) {
        const Key& ka = keys.at(a.get());
        const Key& kb = keys.at(b.get());
        return ka.chain != kb.chain ? ka.chain < kb.chain : ka.depth < kb.depth;
    });
    return sorted;
}

MoveTimes spreadAlongChain(const MoveTimes& stroke, int k, int n)
{
    const float kf = static_cast<float>(k);
    const float k1 = static_cast<float>(k + 1);
    const float nf = static_cast<float>(n);
    const float sB = stroke.startBegin;
    const float sS = stroke.startStop;
    const float eB = stroke.endBegin;
    const float eS = stroke.endStop;
    return {
        sB + (eB - sB) * kf / nf,
        sS + (eS - sS) * kf / nf,
        sB + (eB - sB) * k1 / nf,
        sS + (eS - sS) * k1 / nf,
    };
}

} // namespace plyra
