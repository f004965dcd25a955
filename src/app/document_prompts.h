// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QString>

class QWidget;

namespace plyra {

/// The questions and messages of opening, saving and closing documents. The dialogs
/// are one implementation; tests answer with a script.
/// Threads: main thread only.
class DocumentPrompts {
public:
    enum class SaveAnswer { Save, DontSave, Cancel };
    /// Later: the question was not answered (the program is ending); ask again next time.
    enum class RecoveryAnswer { Recover, Discard, Later };

    virtual ~DocumentPrompts() = default;
    /// Before unsaved changes would be lost: Save, Don't Save or Cancel.
    virtual SaveAnswer askToSaveChanges(QWidget* window, const QString& displayName) = 0;
    virtual bool askToRevert(QWidget* window, const QString& displayName) = 0;
    /// A package to open, or empty when the user cancels.
    virtual QString askOpenPath(QWidget* window, const QString& startFolder) = 0;
    /// A package name to save to, or empty when the user cancels.
    virtual QString askSavePath(QWidget* window, const QString& startPath) = 0;
    virtual void showError(QWidget* window, const QString& message, const QString& reason) = 0;
    /// At start, for unsaved changes that a Plyra which has ended left behind.
    virtual RecoveryAnswer askToRecover(const QString& displayName, const QDateTime& savedAt) = 0;
};

/// The prompts as message boxes and package dialogs.
class DialogDocumentPrompts : public DocumentPrompts {
public:
    SaveAnswer askToSaveChanges(QWidget* window, const QString& displayName) override;
    bool askToRevert(QWidget* window, const QString& displayName) override;
    QString askOpenPath(QWidget* window, const QString& startFolder) override;
    QString askSavePath(QWidget* window, const QString& startPath) override;
    void showError(QWidget* window, const QString& message, const QString& reason) override;
    RecoveryAnswer askToRecover(const QString& displayName, const QDateTime& savedAt) override;
};

} // namespace plyra
