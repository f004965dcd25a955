// SPDX-License-Identifier: MIT
#pragma once

#include "recovery/autosave.h"
#include "recovery/recovery_store.h"

#include <QObject>

#include <functional>

namespace plyra {

class DocumentManager;
class MorphEditorWindowController;

/// Unsaved work across crashes, for the application: autosave follows every document
/// window the manager opens and lets go when it closes (removing the copy when the user
/// chose to lose the changes, keeping it when the program is told to end), and at start
/// every copy whose process has ended is offered, one question each: Recover opens it,
/// Discard removes it, no answer keeps it for the next start.
/// Threads: main thread only.
class DocumentRecovery : public QObject {
    Q_OBJECT

public:
    explicit DocumentRecovery(DocumentManager& documents, const QString& storeFolder = RecoveryStore::defaultFolder(),
        QObject* parent = nullptr);
    ~DocumentRecovery() override;

    RecoveryStore& store() { return m_store; }
    Autosave& autosave() { return m_autosave; }

    /// Asks about each copy left by an ended process, the oldest first, unless ending()
    /// says the program is ending by then.
    void offerLeftCopies(const std::function<bool()>& ending);
    /// Brings every copy up to date now (the program is about to end).
    void writeAllNow() { m_autosave.writeAllNow(); }

private:
    void watch(MorphEditorWindowController* window);
    void recover(const RecoveryCopy& copy, const QString& name);

    DocumentManager& m_documents;
    RecoveryStore m_store;
    Autosave m_autosave;
};

} // namespace plyra
