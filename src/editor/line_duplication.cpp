// SPDX-License-Identifier: MIT
#include "editor/line_duplication.h"

#include "model/morph_editor_data_source.h"
#include "platform/undo_manager.h"

#include <unordered_map>

namespace plyra {
namespace {

MorphLine::Ptr movedCopy(const MorphLine& line, Point offset)
{
    const MorphLine::Ptr copy = line.copy();
    for (unsigned track : {0u, 1u}) {
        const Point start = line.startPoint(track);
        const Point end = line.endPoint(track);
        copy->setStartPoint({start.x + offset.x, start.y + offset.y}, track, nullptr);
        copy->setEndPoint({end.x + offset.x, end.y + offset.y}, track, nullptr);
    }
    return copy;
}

} // namespace

void duplicateSelectedLines(MorphEditorDataSource& dataSource, Point offset)
{
    if (dataSource.selectedLines().empty())
        return;
    std::vector<MorphLine::Ptr> originals;
    std::vector<MorphLine::Ptr> copies;
    std::unordered_map<const MorphLine*, MorphLine::Ptr> copyOf;
    for (const MorphLine::Ptr& line : dataSource.morphLines()) {
        if (!dataSource.isLineSelected(line.get()))
            continue;
        originals.push_back(line);
        copies.push_back(movedCopy(*line, offset));
        copyOf.emplace(line.get(), copies.back());
    }
    // A group of its own, so that the name goes to this step only.
    UndoManager& undo = dataSource.undoManager();
    undo.beginUndoGrouping();
    for (const MorphLine::Ptr& copy : copies)
        dataSource.insertObjectInMorphLinesAtIndex(copy, dataSource.morphLines().size());
    for (std::size_t i = 0; i < originals.size(); ++i) {
        const auto next = copyOf.find(originals[i]->attachedLineAtEnd().get());
        if (next != copyOf.end() && copies[i]->attachedLineAtEnd() != next->second)
            copies[i]->attachLineAtEnd(next->second, &undo);
    }
    dataSource.setSelectedLines(copies);
    undo.setActionName("Duplicate Lines");
    undo.endUndoGrouping();
}

} // namespace plyra
