// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class QWidget;

namespace plyra {

/// Open and save dialogs for document packages. A package is a folder named *.plyra;
/// in these dialogs it behaves like a file: it is shown with a document icon, a double
/// click (or Open on its name) chooses it instead of browsing into it, and Save names a
/// new package. Both answer an empty text when the user cancels.
/// Threads: main thread only.
class PackageFileDialog {
public:
    static constexpr const char* kExtension = "plyra";

    static QString getOpenPackageName(QWidget* parent, const QString& startFolder);
    /// The chosen name always ends in ".plyra". Replacing an existing package is asked
    /// about first.
    static QString getSavePackageName(QWidget* parent, const QString& startPath);

    /// Whether path names a package (a folder whose name ends in ".plyra").
    static bool isPackagePath(const QString& path);
    /// path with ".plyra" appended unless it ends in it already.
    static QString withPackageExtension(const QString& path);
};

} // namespace plyra
