// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace plyra {

class MorphDocument;

/// Whether rendered output of the document may be written at path: a regular file or a
/// new name in a writable folder, outside the document's package and not one of its
/// images (MorphDocument::outputGuard). The render windows' save dialogs and plyra-render
/// ask before anything is written, and the controllers' saves ask again. target becomes
/// the file to write (a symbolic link's file); false with the reason in error otherwise.
/// Threads: main thread (it reads the document).
bool checkOutputPath(const MorphDocument& document, const QString& path, QString* target, QString* error = nullptr);

} // namespace plyra
