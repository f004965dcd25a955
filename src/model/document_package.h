// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace plyra {

class MorphDocument;

/// Reads and writes a document as a package directory: "info.plist" (an XML property
/// list with the frame size, codec settings, line colour and lines) and one file per
/// track image, "Image_0.tiff"/"Image_1.tiff" (PackBits TIFF) or, for images that came
/// from a PDF, "Image_0.pdf"/"Image_1.pdf" with the original PDF bytes.
/// Threads: main thread only (with the document).
class DocumentPackage {
public:
    static constexpr const char* kInfoFileName = "info.plist";

    /// Adds the package's images, settings and lines to the document with undo
    /// registration suspended. False, with a reason in error, when "info.plist" cannot be
    /// read as a dictionary; values of the wrong type are skipped and leave defaults.
    static bool read(MorphDocument& document, const QString& packagePath, QString* error = nullptr);
    /// Writes the package beside packagePath and swaps it in once complete; what was at
    /// packagePath stays untouched when anything fails.
    static bool write(const MorphDocument& document, const QString& packagePath, QString* error = nullptr);
};

} // namespace plyra
