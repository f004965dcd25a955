// SPDX-License-Identifier: MIT
#pragma once

#include "model/morph_line.h"

#include <QString>
#include <QVariant>
#include <QVariantList>

#include <vector>

namespace plyra {

// A selection travels to the inspectors as a QVariantList so that it can hold objects of
// any kind; lines go in as shared line pointers.

/// The selection entry of a line.
QVariant selectionItem(const MorphLine::Ptr& line);
/// The line an entry holds, or null when it holds something else.
MorphLine::Ptr lineInSelectionItem(const QVariant& item);
/// One entry per line, in order.
QVariantList selectionOfLines(const std::vector<MorphLine::Ptr>& lines);
/// The lines of a selection, in order; entries that are not lines are left out.
std::vector<MorphLine::Ptr> linesInSelection(const QVariantList& selection);
/// Whether the selection holds at least one entry and only lines.
bool selectionHoldsOnlyLines(const QVariantList& selection);
/// The text form of a selection for the log: "(", one entry per line, ")". A line is
/// written in its stored text form, any other value as its string or debug text.
QString selectionDescription(const QVariantList& selection);

} // namespace plyra
