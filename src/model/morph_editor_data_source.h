// SPDX-License-Identifier: MIT
#pragma once

#include "model/display_image.h"
#include "model/line_color.h"
#include "model/morph_line.h"

#include <QString>

#include <cstddef>
#include <optional>
#include <vector>

namespace plyra {

class UndoManager;

/// What a line editor asks of the document it edits: the lines and their selection,
/// the images, the line colour and the undo manager, and the indexed operations through
/// which every edit goes (each registers its own undo step and posts its notification).
/// MorphDocument answers it; the interface keeps the editors free of the document's
/// other concerns and the document free of Widgets.
/// Threads: main thread only.
class MorphEditorDataSource {
public:
    virtual ~MorphEditorDataSource() = default;

    virtual const std::vector<MorphLine::Ptr>& morphLines() const = 0;
    virtual const std::vector<MorphLine::Ptr>& selectedLines() const = 0;
    virtual bool isLineSelected(const MorphLine* line) const = 0;
    virtual LineColor::Ptr lineColor() const = 0;
    /// Track 0 for 0, track 1 for any other value; nothing when the track has no image.
    virtual std::optional<DisplayImage> imageInTrack(unsigned track) const = 0;
    virtual UndoManager& undoManager() = 0;
    /// The object of the source's notifications ("objectsUpdated", "selectionUpdated"),
    /// which an editor follows.
    virtual const void* notificationObject() const = 0;

    virtual void insertObjectInMorphLinesAtIndex(const MorphLine::Ptr& line, std::size_t index) = 0;
    virtual void removeObjectFromMorphLinesAtIndex(std::size_t index) = 0;
    /// Does nothing for a line that is already selected.
    virtual void insertObjectInSelectedLinesAtIndex(const MorphLine::Ptr& line, std::size_t index) = 0;
    /// Does nothing for an index not below the selection's count.
    virtual void removeObjectFromSelectedLinesAtIndex(std::size_t index) = 0;
    /// Replaces the whole selection through the two operations above.
    virtual void setSelectedLines(const std::vector<MorphLine::Ptr>& lines) = 0;

    /// Makes the file the track's image as one undoable "Set Image", but only when it
    /// reads as an image: otherwise nothing changes and error says why.
    virtual bool setImageFromFile(const QString& path, unsigned track, QString* error) = 0;
};

} // namespace plyra
