// SPDX-License-Identifier: MIT
#include "app/package_file_dialog.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialogButtonBox>
#include <QLineEdit>
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

/// A file dialog in which a package is a file: choosing one, by a double click, by
/// Enter on its name or by the accept button, ends the dialog with it and never
/// browses into it; ordinary folders are browsed as usual. The save dialog's accept
/// button says "Save" whenever its name is not an ordinary folder.
class PackageDialog : public QFileDialog {
public:
    PackageDialog(QWidget* parent, const QString& caption, AcceptMode mode)
        : QFileDialog(parent, caption)
    {
        setOption(QFileDialog::DontUseNativeDialog);
        static PackageIconProvider icons;
        setIconProvider(&icons);
        setAcceptMode(mode);
        setNameFilter(dialogText(QT_TRANSLATE_NOOP("PackageFileDialog", "Plyra documents (*.plyra)")));
        connect(this, &QFileDialog::directoryEntered, this, [this](const QString& folder) {
            if (PackageFileDialog::isPackagePath(folder))
                choose(folder);
        });
        if (mode == AcceptSave)
            keepSaveLabel();
    }

    /// The package chosen, or empty when the dialog ended with a name that is none.
    const QString& chosenPackage() const { return m_chosen; }

    void accept() override
    {
        const QStringList files = selectedFiles();
        const QString named = files.isEmpty() ? QString() : files.constFirst();
        if (PackageFileDialog::isPackagePath(named))
            return choose(named);
        if (acceptMode() == AcceptSave && !named.isEmpty() && PackageFileDialog::isPackagePath(PackageFileDialog::withPackageExtension(named)))
            return choose(PackageFileDialog::withPackageExtension(named));
        QFileDialog::accept();
    }

private:
    void choose(const QString& package)
    {
        m_chosen = QDir::cleanPath(package);
        setDirectory(QFileInfo(m_chosen).absolutePath());
        QDialog::done(QDialog::Accepted);
    }

    // The dialog names its button "Open" while the name is a folder; a package is a file.
    void keepSaveLabel()
    {
        auto* buttons = findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"));
        auto* name = findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        if (!buttons || !name)
            return;
        auto relabel = [this, buttons, name] {
            const QString typed = QDir(directory()).filePath(name->text());
            const bool folder = !name->text().isEmpty() && QFileInfo(typed).isDir() && !PackageFileDialog::isPackagePath(typed);
            for (QAbstractButton* button : buttons->buttons())
                if (buttons->buttonRole(button) == QDialogButtonBox::AcceptRole && !folder)
                    button->setText(dialogText(QT_TRANSLATE_NOOP("PackageFileDialog", "&Save")));
        };
        // Connected after the dialog's own updates of the button, so it runs after them.
        connect(name, &QLineEdit::textChanged, this, relabel);
        connect(this, &QFileDialog::currentChanged, this, relabel);
        connect(this, &QFileDialog::directoryEntered, this, relabel);
        relabel();
    }

    QString m_chosen;
};

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
    PackageDialog dialog(parent, dialogText(QT_TRANSLATE_NOOP("PackageFileDialog", "Open Document")), QFileDialog::AcceptOpen);
    dialog.setDirectory(startFolder);
    dialog.setFileMode(QFileDialog::ExistingFile);
    if (dialog.exec() != QDialog::Accepted)
        return {};
    return dialog.chosenPackage();
}

QString PackageFileDialog::getSavePackageName(QWidget* parent, const QString& startPath)
{
    PackageDialog dialog(parent, dialogText(QT_TRANSLATE_NOOP("PackageFileDialog", "Save Document")), QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setDefaultSuffix(QString::fromLatin1(kExtension));
    // The dialog's own question is about files; packages are asked about below.
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    const QFileInfo start(startPath);
    dialog.setDirectory(start.isDir() && !isPackagePath(startPath) ? startPath : start.absolutePath());
    if (!start.isDir() || isPackagePath(startPath))
        dialog.selectFile(start.fileName());
    if (dialog.exec() != QDialog::Accepted)
        return {};
    QString chosen = dialog.chosenPackage();
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
