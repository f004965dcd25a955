// SPDX-License-Identifier: MIT
#include "app/document_manager.h"

#include "app/document_prompts.h"
#include "app/morph_editor_window_controller.h"
#include "model/document_package.h"
#include "model/morph_document.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace plyra {
namespace {

// A document that was never saved is proposed in the folder of its first image, where
// the user's material for it lies; else in the home folder.
QString untitledSavePath(const MorphDocument& document, const QString& name)
{
    for (unsigned track : {0u, 1u}) {
        const QString image = document.imageURLInTrack(track);
        if (!image.isEmpty())
            return QFileInfo(image).absoluteDir().filePath(name);
    }
    return QDir::home().filePath(name);
}

QString canonical(const QString& path)
{
    const QFileInfo info(path);
    const QString resolved = info.canonicalFilePath();
    return resolved.isEmpty() ? QDir::cleanPath(info.absoluteFilePath()) : resolved;
}

QString documentName(const QString& path)
{
    return QFileInfo(path).fileName();
}

} // namespace

DocumentManager::DocumentManager(std::unique_ptr<DocumentPrompts> prompts, WindowFactory makeWindow, QObject* parent)
    : QObject(parent)
    , m_prompts(std::move(prompts))
    , m_makeWindow(std::move(makeWindow))
{
}

DocumentManager::~DocumentManager()
{
    for (const QPointer<MorphEditorWindowController>& window : m_windows)
        delete window.data();
}

QString DocumentManager::nextUntitledName()
{
    ++m_untitledCount;
    return m_untitledCount == 1 ? tr("Untitled") : tr("Untitled %1").arg(m_untitledCount);
}

MorphEditorWindowController* DocumentManager::adopt(std::unique_ptr<MorphDocument> document, const QString& path)
{
    const QString untitled = path.isEmpty() ? nextUntitledName() : QString();
    MorphEditorWindowController* window = m_makeWindow(std::move(document), path, untitled);
    m_windows.emplace_back(window);
    emit windowAdopted(window);
    window->show();
    window->raise();
    window->activateWindow();
    return window;
}

MorphEditorWindowController* DocumentManager::newDocument()
{
    return adopt(std::make_unique<MorphDocument>(), QString());
}

MorphEditorWindowController* DocumentManager::newDocumentWithImages(const QString& firstImage, const QString& lastImage)
{
    auto document = std::make_unique<MorphDocument>();
    // The images are where the document starts, not edits to undo.
    document->undoManager().disableUndoRegistration();
    const QString images[2] = {firstImage, lastImage};
    for (unsigned track = 0; track < 2; ++track) {
        QString reason;
        if (images[track].isEmpty() || document->setImageFromFile(images[track], track, &reason))
            continue;
        m_prompts->showError(nullptr, tr("The image \"%1\" could not be opened.").arg(documentName(images[track])), reason);
        return nullptr;
    }
    document->undoManager().enableUndoRegistration();
    MorphEditorWindowController* window = adopt(std::move(document), QString());
    window->document().markEdited();
    return window;
}

MorphEditorWindowController* DocumentManager::windowForPath(const QString& path) const
{
    const QString wanted = canonical(path);
    for (const QPointer<MorphEditorWindowController>& window : m_windows)
        if (window && !window->filePath().isEmpty() && canonical(window->filePath()) == wanted)
            return window;
    return nullptr;
}

MorphEditorWindowController* DocumentManager::openDocument(const QString& path)
{
    if (MorphEditorWindowController* open = windowForPath(path)) {
        open->show();
        open->raise();
        open->activateWindow();
        return open;
    }
    auto document = std::make_unique<MorphDocument>();
    QString reason;
    if (!QFileInfo(path).isDir()) {
        reason = QFileInfo::exists(path) ? tr("It is not a Plyra document (a folder named *.plyra).") : tr("There is no such document.");
    } else if (!document->readFromFile(path, &reason)) {
        if (reason.isEmpty())
            reason = tr("The document is damaged.");
    } else {
        m_recent.add(path);
        return adopt(std::move(document), canonical(path));
    }
    m_prompts->showError(nullptr, tr("The document \"%1\" could not be opened.").arg(documentName(path)), reason);
    return nullptr;
}

MorphEditorWindowController* DocumentManager::openRecovered(std::unique_ptr<MorphDocument> document)
{
    const QString path = document->fileLocation().isEmpty() ? QString() : canonical(document->fileLocation());
    // An unedited window of that package, and the empty window a start without
    // arguments shows, give way; only after the new window is there, so that closing
    // them never closes the last window.
    std::vector<MorphEditorWindowController*> givingWay;
    for (const QPointer<MorphEditorWindowController>& window : m_windows)
        if (window && !window->document().isEdited() && (isBlank(*window) || (!path.isEmpty() && window == windowForPath(path))))
            givingWay.push_back(window);
    MorphEditorWindowController* recovered = adopt(std::move(document), path);
    for (MorphEditorWindowController* window : givingWay)
        discard(window);
    return recovered;
}

bool DocumentManager::isBlank(const MorphEditorWindowController& window)
{
    const MorphDocument& document = window.document();
    return window.filePath().isEmpty() && !document.isEdited() && document.morphLines().empty()
        && document.imageURLInTrack(0).isEmpty() && document.imageURLInTrack(1).isEmpty();
}

MorphEditorWindowController* DocumentManager::openDocumentInteractively(QWidget* parent)
{
    const QString path = m_prompts->askOpenPath(parent, QDir::homePath());
    return path.isEmpty() ? nullptr : openDocument(path);
}

bool DocumentManager::writeTo(MorphEditorWindowController* window, const QString& path)
{
    QString reason;
    if (!window->document().writeToFile(path, &reason)) {
        m_prompts->showError(window, tr("The document \"%1\" could not be saved as \"%2\".").arg(window->displayName(), documentName(path)), reason);
        return false;
    }
    window->setFilePath(canonical(path));
    m_recent.add(path);
    return true;
}

bool DocumentManager::save(MorphEditorWindowController* window)
{
    if (window->filePath().isEmpty())
        return saveAs(window);
    return writeTo(window, window->filePath());
}

bool DocumentManager::saveAs(MorphEditorWindowController* window)
{
    const QString start = window->filePath().isEmpty() ? untitledSavePath(window->document(), window->displayName())
                                                       : window->filePath();
    const QString path = m_prompts->askSavePath(window, start);
    if (path.isEmpty())
        return false;
    const QString cannotSave = tr("The document \"%1\" could not be saved as \"%2\".").arg(window->displayName(), documentName(path));
    if (!window->filePath().isEmpty() && !DocumentPackage::nameInside(window->filePath(), path).isEmpty()) {
        m_prompts->showError(window, cannotSave, tr("A document cannot be saved inside its own package."));
        return false;
    }
    if (MorphEditorWindowController* other = windowForPath(path); other && other != window) {
        m_prompts->showError(window, cannotSave, tr("A document of that name is open in another window."));
        return false;
    }
    return writeTo(window, path);
}

void DocumentManager::revert(MorphEditorWindowController* window)
{
    if (window->filePath().isEmpty() || !m_prompts->askToRevert(window, window->displayName()))
        return;
    auto document = std::make_unique<MorphDocument>();
    QString reason;
    if (!document->readFromFile(window->filePath(), &reason)) {
        m_prompts->showError(window, tr("The document \"%1\" could not be opened.").arg(window->displayName()), reason);
        return;
    }
    const QRect geometry = window->geometry();
    const QString path = window->filePath();
    discard(window);
    MorphEditorWindowController* reverted = adopt(std::move(document), path);
    reverted->setGeometry(geometry);
}

bool DocumentManager::close(MorphEditorWindowController* window)
{
    if (window->document().isEdited()) {
        window->raise();
        window->activateWindow();
        switch (m_prompts->askToSaveChanges(window, window->displayName())) {
        case DocumentPrompts::SaveAnswer::Save:
            if (!save(window))
                return false;
            break;
        case DocumentPrompts::SaveAnswer::DontSave:
            break;
        case DocumentPrompts::SaveAnswer::Cancel:
            return false;
        }
    }
    if (!window->mayCloseDocumentWindows())
        return false;
    discard(window);
    return true;
}

bool DocumentManager::closeAll()
{
    const std::vector<QPointer<MorphEditorWindowController>> windows = m_windows;
    for (const QPointer<MorphEditorWindowController>& window : windows)
        if (window && !close(window))
            return false;
    return true;
}

void DocumentManager::discardAll()
{
    const std::vector<QPointer<MorphEditorWindowController>> windows = m_windows;
    for (const QPointer<MorphEditorWindowController>& window : windows) {
        if (!window)
            continue;
        discard(window, false);
        // At once: the event loop that would delete it later has ended.
        delete window.data();
    }
}

void DocumentManager::discard(MorphEditorWindowController* window, bool onPurpose)
{
    emit windowDiscarded(window, onPurpose);
    std::erase_if(m_windows, [window](const QPointer<MorphEditorWindowController>& w) { return !w || w == window; });
    window->closeDocumentWindows();
    window->hide();
    window->deleteLater();
    if (m_windows.empty())
        emit lastWindowClosed();
}

} // namespace plyra
