// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>
#include <QString>
#include <QStringList>

#include <functional>

class QWidget;

namespace plyra {

/// What a render window's save dialog offers: the extension the file must have, other
/// extensions it may have instead, and the file-type filters shown, one for each
/// extension in that order. The filter at folderFilter (none when -1) saves into a folder
/// of that name instead of a file.
struct SaveFileTypes {
    QString requiredExtension;
    QStringList alternativeExtensions;
    QStringList nameFilters;
    int folderFilter = -1;
};

/// The save dialog of the render windows and the alert of a failed save.
/// Threads: main thread.
class RenderSaveDialog {
    Q_DECLARE_TR_FUNCTIONS(plyra::RenderSaveDialog)

public:
    /// The path with the required extension appended unless it already ends in it or in
    /// one of the alternatives (compared without regard to case).
    static QString pathWithRequiredExtension(const QString& path, const SaveFileTypes& types);

    /// Where the dialog starts: beside the document, named after it with the required
    /// extension, or in the home folder without a name for a document never saved.
    static QString startPath(const QString& documentPath, const QString& requiredExtension);

    /// Runs the dialog as a sheet of the window; calls `save` with the chosen path
    /// (extension enforced; ending in "/" when the folder filter was chosen) once the
    /// user confirms.
    static void run(QWidget* window, const QString& documentPath, const SaveFileTypes& types,
        std::function<void(const QString&)> save);

    /// The same dialog, waited for: the chosen path (extension enforced), or empty when
    /// the user cancels.
    static QString askPath(QWidget* window, const QString& documentPath, const SaveFileTypes& types);

    enum class UnsavedResultAnswer { Save, DontSave, Cancel };
    /// Before a finished result that was never saved would be lost: the question, and
    /// Save, Don't Save or Cancel.
    static UnsavedResultAnswer askToSaveResult(QWidget* window, const QString& question);

    /// The alert of a failed save: "Saving failed", "Could not save to PATH", the reason.
    static void showSaveFailedAlert(QWidget* window, const QString& path, const QString& reason);
};

} // namespace plyra
