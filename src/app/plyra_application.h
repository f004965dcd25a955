// SPDX-License-Identifier: MIT
#pragma once

#include "app/application_commands.h"
#include "app/face_finding.h"

#include <QObject>
#include <QPointer>
#include <QStringList>

#include <memory>

class QApplication;

namespace plyra {

class DocumentManager;
class DocumentPrompts;
class HelpWindow;
class DocumentRecovery;
class MorphAppController;
class UpdateAlerts;

/// The application shell: its name, version and icon, the translations of the
/// interface, the user defaults it registers, the documents named on the command line,
/// the update check at launch, help and About. It answers the commands that a document
/// window's menus send to the application.
/// Threads: main thread only.
class PlyraApplication : public QObject, public ApplicationCommands {
    Q_OBJECT

public:
    /// Sets the application's identity and installs the translations of the user's
    /// language. Call once, right after the QApplication exists.
    static void configure(QApplication& application);
    /// Loads the interface's translations for the given languages (the first that has
    /// one wins); returns the language chosen, or empty for English.
    static QString installTranslations(const QStringList& languages);

    PlyraApplication(std::unique_ptr<DocumentPrompts> prompts, std::unique_ptr<UpdateAlerts> alerts);
    ~PlyraApplication() override;

    /// Opens what the arguments name: packages, or two images for a new document, or
    /// nothing (an empty new document). False when nothing could be opened.
    bool openArguments(const QStringList& arguments);
    /// Offers the unsaved changes that ended processes left, removes their temporary
    /// movies, and starts the update check.
    void applicationDidFinishLaunching();
    /// Asked to end from outside (SIGTERM, SIGINT, SIGHUP): nobody is there to answer a
    /// question, so unsaved changes go into their recovery copies; open dialogs end, and
    /// with them every event loop, so that exec() returns. The windows close after that,
    /// with discardAllDocuments().
    void terminate();
    bool isTerminating() const { return m_terminating; }
    /// Closes every document window without asking; their recovery copies stay.
    void discardAllDocuments();

    DocumentManager& documents() const { return *m_documents; }
    DocumentRecovery& recovery() const { return *m_recovery; }
    MorphAppController& appController() const { return *m_appController; }

    // ApplicationCommands
    void newDocument() override;
    void openDocument() override;
    void openRecentDocument(const QString& path) override;
    QStringList recentDocuments() const override;
    void clearRecentDocuments() override;
    bool saveDocument(MorphEditorWindowController* window) override;
    bool saveDocumentAs(MorphEditorWindowController* window) override;
    void revertDocument(MorphEditorWindowController* window) override;
    bool closeDocument(MorphEditorWindowController* window) override;
    void quit() override;
    void showHelp(const QString& page) override;
    void checkForUpdates() override;
    void showAbout() override;
    const FaceFinding& faceFinding() const override { return m_faceFinding; }
    /// For the windows opened from now on (tests).
    void setFaceFinding(FaceFinding finding) { m_faceFinding = std::move(finding); }

signals:
    /// Every document is closed, or the user quit.
    void finished();

private:
    void connectInspector();

    std::unique_ptr<DocumentManager> m_documents;
    std::unique_ptr<MorphAppController> m_appController;
    // After the documents: autosave lets go of them before they go.
    std::unique_ptr<DocumentRecovery> m_recovery;
    QPointer<HelpWindow> m_help;
    FaceFinding m_faceFinding = FaceFinding::installed();
    bool m_terminating = false;
};

} // namespace plyra
