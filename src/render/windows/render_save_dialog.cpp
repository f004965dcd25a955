// SPDX-License-Identifier: MIT
#include "render/windows/render_save_dialog.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>

#include <memory>

namespace plyra {
QString RenderSaveDialog::pathWithRequiredExtension(const QString& path, const SaveFileTypes& types)
{
    QStringList accepted = types.alternativeExtensions;
    accepted.prepend(types.requiredExtension);
    for (const QString& extension : accepted)
        if (path.endsWith(QLatin1Char('.') + extension, Qt::CaseInsensitive))
            return path;
    return path + QLatin1Char('.') + types.requiredExtension;
}

QString RenderSaveDialog::startPath(const QString& documentPath, const QString& requiredExtension)
{
    if (documentPath.isEmpty())
        return QDir::homePath();
    const QFileInfo document(documentPath);
    return document.dir().filePath(document.completeBaseName() + QLatin1Char('.') + requiredExtension);
}

namespace {

QFileDialog* makeDialog(QWidget* window, const QString& documentPath, const SaveFileTypes& types)
{
    auto* dialog = new QFileDialog(window, RenderSaveDialog::tr("Save"));
    dialog->setObjectName(QStringLiteral("saveDialog"));
    dialog->setAccessibleName(RenderSaveDialog::tr("Save"));
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setWindowModality(Qt::WindowModal);
    dialog->setNameFilters(types.nameFilters);
    dialog->setDefaultSuffix(types.requiredExtension);
    const QString start = RenderSaveDialog::startPath(documentPath, types.requiredExtension);
    if (documentPath.isEmpty()) {
        dialog->setDirectory(start);
    } else {
        dialog->setDirectory(QFileInfo(start).absolutePath());
        dialog->selectFile(QFileInfo(start).fileName());
    }
    // The suffix of the chosen file type is the one a bare name gets.
    QObject::connect(dialog, &QFileDialog::filterSelected, dialog, [dialog, types](const QString& filter) {
        const int index = types.nameFilters.indexOf(filter);
        const QStringList all = QStringList{types.requiredExtension} + types.alternativeExtensions;
        if (index >= 0 && index == types.folderFilter)
            dialog->setDefaultSuffix(QString());
        else
            dialog->setDefaultSuffix(index >= 0 && index < all.size() ? all[index] : types.requiredExtension);
    });
    return dialog;
}

} // namespace

void RenderSaveDialog::run(QWidget* window, const QString& documentPath, const SaveFileTypes& types,
    std::function<void(const QString&)> save)
{
    QFileDialog* dialog = makeDialog(window, documentPath, types);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(dialog, &QFileDialog::fileSelected, window, [dialog, types, save](const QString& path) {
        const bool folder = types.folderFilter >= 0 && dialog->selectedNameFilter() == types.nameFilters.value(types.folderFilter);
        save(folder ? path + QLatin1Char('/') : pathWithRequiredExtension(path, types));
    });
    dialog->open();
}

QString RenderSaveDialog::askPath(QWidget* window, const QString& documentPath, const SaveFileTypes& types)
{
    const std::unique_ptr<QFileDialog> dialog(makeDialog(window, documentPath, types));
    if (dialog->exec() != QDialog::Accepted || dialog->selectedFiles().isEmpty())
        return {};
    const QString path = dialog->selectedFiles().constFirst();
    const bool folder = types.folderFilter >= 0 && dialog->selectedNameFilter() == types.nameFilters.value(types.folderFilter);
    return folder ? path + QLatin1Char('/') : pathWithRequiredExtension(path, types);
}

RenderSaveDialog::UnsavedResultAnswer RenderSaveDialog::askToSaveResult(QWidget* window, const QString& question)
{
    QMessageBox box(QMessageBox::Warning, tr("Save"), question, QMessageBox::NoButton, window);
    box.setObjectName(QStringLiteral("unsavedResultQuestion"));
    box.setInformativeText(tr("It will be lost if you don't save it."));
    QPushButton* save = box.addButton(QMessageBox::Save);
    QPushButton* discard = box.addButton(tr("Don't Save"), QMessageBox::DestructiveRole);
    box.addButton(QMessageBox::Cancel);
    box.setDefaultButton(save);
    box.setWindowModality(Qt::WindowModal);
    box.exec();
    if (box.clickedButton() == save)
        return UnsavedResultAnswer::Save;
    return box.clickedButton() == discard ? UnsavedResultAnswer::DontSave : UnsavedResultAnswer::Cancel;
}

void RenderSaveDialog::showSaveFailedAlert(QWidget* window, const QString& path, const QString& reason)
{
    auto* alert = new QMessageBox(QMessageBox::Critical, tr("Saving failed"), tr("Could not save to %1").arg(path),
        QMessageBox::Ok, window);
    alert->setObjectName(QStringLiteral("saveFailedAlert"));
    alert->setAccessibleName(tr("Saving failed"));
    alert->setInformativeText(reason);
    alert->setWindowModality(Qt::WindowModal);
    alert->setAttribute(Qt::WA_DeleteOnClose);
    alert->open();
}

} // namespace plyra
