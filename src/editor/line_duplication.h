// SPDX-License-Identifier: MIT
#pragma once

#include "model/geometry.h"

namespace plyra {

class MorphEditorDataSource;

/// Adds a copy of every selected line after the document's lines, in the document's
/// order, with both tracks moved by offset (unit coordinates), and selects the copies
/// instead; two selected lines joined end to start give copies joined the same way.
/// One undoable "Duplicate Lines"; nothing without a selection.
/// Threads: main thread only.
void duplicateSelectedLines(MorphEditorDataSource& dataSource, Point offset);

} // namespace plyra
