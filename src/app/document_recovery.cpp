// SPDX-License-Identifier: MIT
#include "app/document_recovery.h"

#include "app/document_manager.h"
#include "app/document_prompts.h"
#include "app/morph_editor_window_controller.h"
#include "model/morph_document.h"
#include "recovery/recovered_document.h"

#include <QFileInfo>
#include <QPointer>

namespace plyra {

DocumentRecovery::DocumentRecovery(DocumentManager& documents, const QString& storeFolder, QObject* parent)
    : QObject(parent)
    , m_documents(documents)
    , m_store(storeFolder)
    , m_autosave(m_store)
{
    connect(&documents, &DocumentManager::windowAdopted, this, &DocumentRecovery::watch);
    connect(&documents, &DocumentManager::windowDiscarded, this,
        [this](MorphEditorWindowController* window, bool onPurpose) { m_autosave.unwatch(window->document(), onPurpose); });
}

DocumentRecovery::~DocumentRecovery() = default;

void DocumentRecovery::watch(MorphEditorWindowController* window)
{
    const QPointer<MorphEditorWindowController> guarded(window);
    m_autosave.watch(window->document(), [guarded] {
        return guarded ? Autosave::Description{guarded->filePath(), guarded->displayName()} : Autosave::Description{};
    });
}

void DocumentRecovery::offerLeftCopies(const std::function<bool()>& ending)
{
    m_store.removeIncompleteCopies();
    for (RecoveryCopy& copy : m_store.orphanedCopies()) {
        // This process keeps the copy from now on: no other start offers it meanwhile,
        // and it is offered again after this one ends unless the user chose.
        if (ending() || !m_store.claim(copy))
            continue;
        const QString name = copy.displayName.isEmpty() ? QFileInfo(copy.documentPath).completeBaseName() : copy.displayName;
        switch (m_documents.prompts().askToRecover(name, copy.savedAt)) {
        case DocumentPrompts::RecoveryAnswer::Recover:
            recover(copy, name);
            break;
        case DocumentPrompts::RecoveryAnswer::Discard:
            RecoveryStore::remove(copy.folder);
            break;
        case DocumentPrompts::RecoveryAnswer::Later:
            break;
        }
    }
}

void DocumentRecovery::recover(const RecoveryCopy& copy, const QString& name)
{
    QString reason;
    std::unique_ptr<MorphDocument> document = RecoveredDocument::open(copy, &reason);
    if (!document) {
        m_documents.prompts().showError(nullptr, tr("The unsaved changes to \"%1\" could not be recovered.").arg(name), reason);
        return;
    }
    MorphEditorWindowController* window = m_documents.openRecovered(std::move(document));
    m_autosave.useCopy(window->document(), copy);
}

} // namespace plyra
