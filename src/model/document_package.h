// SPDX-License-Identifier: MIT
#pragma once

#include "model/display_image.h"
#include "model/staged_directory.h"
#include "platform/plist/property_list.h"

#include <QString>

#include <vector>

namespace plyra {

class MorphDocument;

/// One image file a save writes, encoded, under the name "info.plist" records for it.
struct PackageImage {
    QString fileName;
    DisplayImage image;
};

/// A file a save carries over byte for byte: an image the document could not read,
/// which stays the user's file, under the name "info.plist" keeps for it.
struct KeptImage {
    QString source;       ///< where it is now
    QString relativeName; ///< its name inside the saved package
};

/// Everything a package holds, gathered on the main thread before anything is written.
struct PackageContents {
    PropertyList::Dictionary info;
    std::vector<PackageImage> images;
    std::vector<KeptImage> kept;
};

/// Reads and writes a document as a package directory: "info.plist" (an XML property
/// list with the frame size, codec settings, line colour and lines) and one file per
/// track image, "Image_0.tiff"/"Image_1.tiff" (PackBits TIFF) or, for images that came
/// from a PDF, "Image_0.pdf"/"Image_1.pdf" with the original PDF bytes. A package is the
/// user's folder: saving keeps every file and folder in it that the document does not
/// own, images it could not read, and the keys of "info.plist" it does not know.
/// Threads: main thread only (with the document).
class DocumentPackage {
public:
    static constexpr const char* kInfoFileName = "info.plist";
    static constexpr const char* kFirstImagePathKey = "firstImagePath";
    static constexpr const char* kLastImagePathKey = "lastImagePath";
    static constexpr const char* kMorphLinesKey = "morphLines";

    /// Adds the package's images, settings and lines to the document with undo
    /// registration suspended, and hands it the keys of "info.plist" that reading did
    /// not take up. False, with a reason in error, when "info.plist" cannot be read as a
    /// dictionary; values of the wrong type are skipped and leave defaults.
    static bool read(MorphDocument& document, const QString& packagePath, QString* error = nullptr);
    /// Writes the package beside packagePath and swaps it in once complete; what was at
    /// packagePath stays untouched when anything fails.
    static bool write(const MorphDocument& document, const QString& packagePath, QString* error = nullptr,
        const CommitHooks& hooks = {});

    /// What writing the document to packagePath would put into the package; without the
    /// lines when withLines is false (a caller that converts them elsewhere).
    static PackageContents contents(const MorphDocument& document, const QString& packagePath, bool withLines = true);
    /// The name a file at path has inside the folder ("Image_0.png", "images/a.png");
    /// empty when it lies outside.
    static QString nameInside(const QString& folder, const QString& path);
};

} // namespace plyra
