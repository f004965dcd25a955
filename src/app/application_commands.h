// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

namespace plyra {

class MorphEditorWindowController;
struct FaceFinding;

/// What a document window's menus ask of the application: the document commands that
/// concern more than one window, help, the update check and quitting; and how faces are
/// found.
/// Threads: main thread only.
class ApplicationCommands {
public:
    virtual ~ApplicationCommands() = default;

    virtual void newDocument() = 0;
    virtual void openDocument() = 0;
    virtual void openRecentDocument(const QString& path) = 0;
    virtual QStringList recentDocuments() const = 0;
    virtual void clearRecentDocuments() = 0;
    virtual bool saveDocument(MorphEditorWindowController* window) = 0;
    virtual bool saveDocumentAs(MorphEditorWindowController* window) = 0;
    virtual void revertDocument(MorphEditorWindowController* window) = 0;
    /// Asks before unsaved changes are lost; false when the user cancelled.
    virtual bool closeDocument(MorphEditorWindowController* window) = 0;
    virtual void quit() = 0;

    virtual void showHelp(const QString& page) = 0;
    virtual void checkForUpdates() = 0;
    virtual void showAbout() = 0;

    virtual const FaceFinding& faceFinding() const = 0;
};

} // namespace plyra
