// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonObject>

namespace plyra {

class MorphDocument;

/// The document as one JSON object: frame size, codec settings, line colour (null while
/// the document uses the default), the two track images, the movie settings (null while
/// it has none of its own) and every line with its points, times and the indexes of the
/// lines joined to it.
/// Threads: main thread (reads the document).
QJsonObject documentSummary(const MorphDocument& document);

} // namespace plyra
