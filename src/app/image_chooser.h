// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>
#include <QString>
#include <QStringList>

#include <functional>

class QWidget;

namespace plyra {

/// The open dialog of "Choose First Image…" and "Choose Last Image…": for people who do
/// not drag files from a file manager. It runs as a sheet of the document window, offers
/// the image types the document reads (and all files), and starts in the folder of the
/// image it replaces (for an image kept in a package, the package's folder), else beside
/// the document, else in the pictures folder.
/// Threads: main thread.
class ImageChooser {
    Q_DECLARE_TR_FUNCTIONS(plyra::ImageChooser)

public:
    /// The dialog's file-type filters: every readable image type first, then all files.
    static QStringList nameFilters();
    /// Where the dialog starts (see the class comment).
    static QString startFolder(const QString& currentImagePath, const QString& documentPath);

    /// Opens the dialog, titled for the track; calls `chosen` with the file once the user
    /// confirms one.
    static void run(QWidget* window, unsigned track, const QString& startFolder,
        std::function<void(const QString&)> chosen);
};

} // namespace plyra
