// SPDX-License-Identifier: MIT
#include "app/document_prompts.h"

#include "app/package_file_dialog.h"

#include <QApplication>
#include <QLocale>
#include <QMessageBox>
#include <QPushButton>

namespace plyra {
namespace {

QString promptText(const char* text)
{
    return QApplication::translate("DocumentPrompts", text);
}

} // namespace

DocumentPrompts::SaveAnswer DialogDocumentPrompts::askToSaveChanges(QWidget* window, const QString& displayName)
{
    QMessageBox box(QMessageBox::Warning, promptText(QT_TRANSLATE_NOOP("DocumentPrompts", "Save Changes")),
        promptText(QT_TRANSLATE_NOOP("DocumentPrompts", "Do you want to save the changes made to the document \"%1\"?")).arg(displayName),
        QMessageBox::NoButton, window);
    box.setInformativeText(promptText(QT_TRANSLATE_NOOP("DocumentPrompts", "Your changes will be lost if you don't save them.")));
    QPushButton* save = box.addButton(QMessageBox::Save);
    QPushButton* discard = box.addButton(promptText(QT_TRANSLATE_NOOP("DocumentPrompts", "Don't Save")), QMessageBox::DestructiveRole);
    box.addButton(QMessageBox::Cancel);
    box.setDefaultButton(save);
    box.setWindowModality(Qt::WindowModal);
    box.exec();
    if (box.clickedButton() == save)
        return SaveAnswer::Save;
    if (box.clickedButton() == discard)
        return SaveAnswer::DontSave;
    return SaveAnswer::Cancel;
}

bool DialogDocumentPrompts::askToRevert(QWidget* window, const QString& displayName)
{
    QMessageBox box(QMessageBox::Warning, promptText(QT_TRANSLATE_NOOP("DocumentPrompts", "Revert to Saved")),
        promptText(QT_TRANSLATE_NOOP("DocumentPrompts", "Do you want to revert \"%1\" to the version saved last?")).arg(displayName),
        QMessageBox::NoButton, window);
    box.setInformativeText(promptText(QT_TRANSLATE_NOOP("DocumentPrompts", "Your current changes will be lost.")));
    QPushButton* revert = box.addButton(promptText(QT_TRANSLATE_NOOP("DocumentPrompts", "Revert")), QMessageBox::DestructiveRole);
    box.addButton(QMessageBox::Cancel);
    box.setDefaultButton(QMessageBox::Cancel);
    box.setWindowModality(Qt::WindowModal);
    box.exec();
    return box.clickedButton() == revert;
}

QString DialogDocumentPrompts::askOpenPath(QWidget* window, const QString& startFolder)
{
    return PackageFileDialog::getOpenPackageName(window, startFolder);
}

QString DialogDocumentPrompts::askSavePath(QWidget* window, const QString& startPath)
{
    return PackageFileDialog::getSavePackageName(window, startPath);
}

DocumentPrompts::RecoveryAnswer DialogDocumentPrompts::askToRecover(const QString& displayName, const QDateTime& savedAt)
{
    QMessageBox box(QMessageBox::Question, QApplication::applicationDisplayName(),
        promptText(QT_TRANSLATE_NOOP("DocumentPrompts", "Plyra found unsaved changes to “%1” from %2."))
            .arg(displayName, QLocale().toString(savedAt, QLocale::ShortFormat)),
        QMessageBox::NoButton, nullptr);
    box.setInformativeText(promptText(QT_TRANSLATE_NOOP("DocumentPrompts",
        "Recover opens the document with these changes, still to be saved. Discard deletes them.")));
    QPushButton* recover = box.addButton(promptText(QT_TRANSLATE_NOOP("DocumentPrompts", "Recover")), QMessageBox::AcceptRole);
    QPushButton* discard = box.addButton(promptText(QT_TRANSLATE_NOOP("DocumentPrompts", "Discard")), QMessageBox::DestructiveRole);
    box.setDefaultButton(recover);
    box.exec();
    if (box.clickedButton() == recover)
        return RecoveryAnswer::Recover;
    return box.clickedButton() == discard ? RecoveryAnswer::Discard : RecoveryAnswer::Later;
}

void DialogDocumentPrompts::showError(QWidget* window, const QString& message, const QString& reason)
{
    QMessageBox box(QMessageBox::Critical, QApplication::applicationDisplayName(), message, QMessageBox::Ok, window);
    box.setInformativeText(reason);
    box.setWindowModality(Qt::WindowModal);
    box.exec();
}

} // namespace plyra
