// SPDX-License-Identifier: MIT
#include "app/package_file_dialog.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileIconProvider>
#include <QFileInfo>
#include <QIcon>
#include <QMessageBox>
#include <QStyle>

namespace plyra {
namespace {

const QString kDotExtension = QStringLiteral(".plyra");

/// Shows packages with a document icon instead of a folder icon.
class PackageIconProvider : public QFileIconProvider {
public:
    QIcon icon(const QFileInfo& info) const override
    {
        if (info.isDir() && info.fileName().endsWith(kDotExtension))
            return QIcon(QStringLiteral(":/app/icons/plyra-document.svg"));
        return QFileIconProvider::icon(info);
    }
};

QString dialogText(const char* text)
{
    return QApplication::translate("PackageFileDialog", text);
}

// Prepares a dialog that takes a package the moment the user tries to enter it: the
// dialog then closes with that package as its answer.
void catchPackages(QFileDialog& dialog, QString& chosen)
{
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setIconProvider(new PackageIconProvider);
    QObject::connect(&dialog, &QFileDialog::directoryEntered, &dialog, [&dialog, &chosen](const QString& folder) {
        if (!PackageFileDialog::isPackagePath(folder))
            return;
        chosen = QDir::cleanPath(folder);
        dialog.setDirectory(QFileInfo(chosen).absolutePath());
        static_cast<QDialog&>(dialog).done(QDialog::Accepted);
    });
}

} // namespace

bool PackageFileDialog::isPackagePath(const QString& path)
{
    const QFileInfo info(path);
    return info.fileName().endsWith(kDotExtension) && info.isDir();
}

QString PackageFileDialog::withPackageExtension(const QString& path)
{
    return path.endsWith(kDotExtension) ? path : path + kDotExtension;
}

QString PackageFileDialog::getOpenPackageName(QWidget* parent, const QString& startFolder)
{
    QFileDialog dialog(parent, dialogText(QT_TRANSLATE_NOOP("PackageFileDialog", "Open Document")), startFolder);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setNameFilter(dialogText(QT_TRANSLATE_NOOP("PackageFileDialog", "Plyra documents (*.plyra)")));
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    QString chosen;
    catchPackages(dialog, chosen);
    if (dialog.exec() != QDialog::Accepted)
        return {};
    return chosen;
}

QString PackageFileDialog::getSavePackageName(QWidget* parent, const QString& startPath)
{
    QFileDialog dialog(parent, dialogText(QT_TRANSLATE_NOOP("PackageFileDialog", "Save Document")));
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setNameFilter(dialogText(QT_TRANSLATE_NOOP("PackageFileDialog", "Plyra documents (*.plyra)")));
    dialog.setDefaultSuffix(QString::fromLatin1(kExtension));
    // The dialog's own question is about files; packages are asked about below.
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    const QFileInfo start(startPath);
    dialog.setDirectory(start.isDir() && !isPackagePath(startPath) ? startPath : start.absolutePath());
    if (!start.isDir() || isPackagePath(startPath))
        dialog.selectFile(start.fileName());
    QString chosen;
    catchPackages(dialog, chosen);
    if (dialog.exec() != QDialog::Accepted)
        return {};
    if (chosen.isEmpty() && !dialog.selectedFiles().isEmpty())
        chosen = dialog.selectedFiles().constFirst();
    if (chosen.isEmpty())
        return {};
    chosen = withPackageExtension(chosen);
    if (QFileInfo::exists(chosen)) {
        const auto answer = QMessageBox::warning(parent, dialogText(QT_TRANSLATE_NOOP("PackageFileDialog", "Save Document")),
            dialogText(QT_TRANSLATE_NOOP("PackageFileDialog", "\"%1\" already exists. Do you want to replace it?")).arg(QFileInfo(chosen).fileName()),
            QMessageBox::Cancel | QMessageBox::Yes, QMessageBox::Cancel);
        if (answer != QMessageBox::Yes)
            return {};
    }
    return chosen;
}

} // namespace plyra
