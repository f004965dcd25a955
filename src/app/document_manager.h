// SPDX-License-Identifier: MIT
#pragma once

#include "app/recent_documents.h"

#include <QObject>
#include <QPointer>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

class QWidget;

namespace plyra {

class DocumentPrompts;
class MorphDocument;
class MorphEditorWindowController;

/// The one owner of open documents: it makes new ones, opens packages (raising the
/// window of one that is already open, refusing a damaged one with its reason), saves,
/// reverts, and is the only one that closes a document, asking first when unsaved
/// work would be lost.
/// Threads: main thread only.
class DocumentManager : public QObject {
    Q_OBJECT

public:
    /// Makes the window of a document; the window owns the document.
    using WindowFactory = std::function<MorphEditorWindowController*(std::unique_ptr<MorphDocument>, const QString& filePath, const QString& untitledName)>;

    DocumentManager(std::unique_ptr<DocumentPrompts> prompts, WindowFactory makeWindow, QObject* parent = nullptr);
    ~DocumentManager() override;

    MorphEditorWindowController* newDocument();
    /// A new document with these images as its first and last image (either may be
    /// empty). Null, with a message, when an image cannot be read.
    MorphEditorWindowController* newDocumentWithImages(const QString& firstImage, const QString& lastImage);
    /// Raises the document's window when it is open already. Null, with a message naming
    /// the package and the reason, when it cannot be read; nothing else changes then.
    MorphEditorWindowController* openDocument(const QString& path);
    /// Asks for a package, then opens it.
    MorphEditorWindowController* openDocumentInteractively(QWidget* parent);
    /// A window for a recovered document, which belongs to its fileLocation() (or to
    /// none: it comes back untitled). An unedited window of that package, and an empty
    /// untitled one, give way.
    MorphEditorWindowController* openRecovered(std::unique_ptr<MorphDocument> document);

    bool save(MorphEditorWindowController* window);
    bool saveAs(MorphEditorWindowController* window);
    void revert(MorphEditorWindowController* window);
    /// False when the user cancelled or a save that the user asked for failed.
    bool close(MorphEditorWindowController* window);
    /// Closes every document, asking for each; false when the user cancelled one.
    bool closeAll();
    /// Closes every document at once without asking (the program is told to end); their
    /// recovery copies stay for the next start.
    void discardAll();

    const std::vector<QPointer<MorphEditorWindowController>>& windows() const { return m_windows; }
    MorphEditorWindowController* windowForPath(const QString& path) const;
    RecentDocuments& recentDocuments() { return m_recent; }
    DocumentPrompts& prompts() const { return *m_prompts; }

signals:
    /// A document window opened.
    void windowAdopted(MorphEditorWindowController* window);
    /// A document window is about to close; onPurpose when the user chose to lose its
    /// unsaved changes (or it had none), not when the program is told to end.
    void windowDiscarded(MorphEditorWindowController* window, bool onPurpose);
    /// The last document window closed.
    void lastWindowClosed();

private:
    MorphEditorWindowController* adopt(std::unique_ptr<MorphDocument> document, const QString& path);
    bool writeTo(MorphEditorWindowController* window, const QString& path);
    void discard(MorphEditorWindowController* window, bool onPurpose = true);
    /// An untitled window that nobody has used: no images, no lines, no changes.
    static bool isBlank(const MorphEditorWindowController& window);
    QString nextUntitledName();

    std::unique_ptr<DocumentPrompts> m_prompts;
    WindowFactory m_makeWindow;
    std::vector<QPointer<MorphEditorWindowController>> m_windows;
    RecentDocuments m_recent;
    int m_untitledCount = 0;
};

} // namespace plyra
