// SPDX-License-Identifier: MIT
#pragma once

#include "model/document_package.h"

#include <QString>

namespace plyra {

/// The part of a save that keeps what the document does not own: images it could not
/// read go into the new package byte for byte under their names, and every other file
/// and folder of the package being replaced (notes, renders, originals) is carried over
/// unchanged, hard-linked where the file system allows, so that large files cost no
/// time.
/// Threads: main thread (with the save).
class PackageCarryOver {
public:
    /// Puts the kept images into the staging directory. False, with the file and the
    /// reason in error, when one cannot be put there.
    static bool keepImages(const PackageContents& contents, const StagedDirectory& staged, QString* error);
    /// Carries every entry of the package at the final place that the document does not
    /// own: not "info.plist", not an image that its "info.plist" names, not a file this
    /// save writes. False, with the entry and the reason in error, when one cannot be
    /// carried (the save then fails and the package stays as it is).
    static bool carryForeignEntries(const PackageContents& contents, const StagedDirectory& staged, QString* error);
};

} // namespace plyra
