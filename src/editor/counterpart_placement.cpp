// SPDX-License-Identifier: MIT
#include "editor/counterpart_placement.h"

#include "editor/view_geometry.h"
#include "model/morph_editor_data_source.h"

namespace plyra {
namespace {

std::optional<PixelSize> imageSize(const MorphEditorDataSource& dataSource, unsigned track)
{
    const std::optional<DisplayImage> image = dataSource.imageInTrack(track);
    if (!image || image->raster.isNull())
        return std::nullopt;
    return PixelSize{image->size().width(), image->size().height()};
}

} // namespace

TrackSizes trackSizesOf(const MorphEditorDataSource& dataSource)
{
    const std::optional<PixelSize> first = imageSize(dataSource, 0);
    const std::optional<PixelSize> last = imageSize(dataSource, 1);
    const PixelSize unit;
    return {first.value_or(last.value_or(unit)), last.value_or(first.value_or(unit))};
}

LineCounterparts counterpartsFrom(const MorphEditorDataSource& dataSource, unsigned fromTrack,
    const std::vector<MorphLine::Ptr>& knownLines)
{
    return LineCounterparts(knownLines, fromTrack, trackSizesOf(dataSource));
}

void placeSelectionByPrediction(MorphEditorDataSource& dataSource, unsigned fromTrack)
{
    std::vector<MorphLine::Ptr> known;
    for (const MorphLine::Ptr& line : dataSource.morphLines())
        if (!dataSource.isLineSelected(line.get()))
            known.push_back(line);
    const LineCounterparts counterparts = counterpartsFrom(dataSource, fromTrack, known);
    auto isKnown = [&dataSource](const MorphLine::Ptr& neighbour) {
        return neighbour && !dataSource.isLineSelected(neighbour.get());
    };
    const unsigned toTrack = otherTrack(fromTrack);
    UndoManager* undo = &dataSource.undoManager();
    const std::vector<MorphLine::Ptr> selection = dataSource.selectedLines();
    for (const MorphLine::Ptr& line : selection) {
        if (!isKnown(line->attachedLineAtStart()))
            line->setStartPoint(counterparts.counterpart(line->startPoint(fromTrack)), toTrack, undo);
        if (!isKnown(line->attachedLineAtEnd()))
            line->setEndPoint(counterparts.counterpart(line->endPoint(fromTrack)), toTrack, undo);
    }
}

} // namespace plyra
