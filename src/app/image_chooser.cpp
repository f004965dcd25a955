// SPDX-License-Identifier: MIT
#include "app/image_chooser.h"

#include "app/package_file_dialog.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QImageReader>
#include <QStandardPaths>

#include <algorithm>

namespace plyra {

QStringList ImageChooser::nameFilters()
{
    // The kinds of file photographs and drawings come in, as far as this system reads
    // them; icons, cursors and the like open too, under "All files".
    static const char* const photoKinds[] = {"avif", "bmp", "gif", "heic", "heif", "jp2", "jpeg", "jpg", "jxl",
        "pbm", "pgm", "png", "ppm", "tga", "webp"};
    const QList<QByteArray> readable = QImageReader::supportedImageFormats();
    QStringList patterns{QStringLiteral("*.pdf"), QStringLiteral("*.tif"), QStringLiteral("*.tiff")};
    for (const char* kind : photoKinds)
        if (readable.contains(QByteArray(kind)))
            patterns << QStringLiteral("*.") + QLatin1String(kind);
    std::sort(patterns.begin(), patterns.end());
    return {tr("Images (%1)").arg(patterns.join(QLatin1Char(' '))), tr("All files (*)")};
}

QString ImageChooser::startFolder(const QString& currentImagePath, const QString& documentPath)
{
    for (const QString& path : {currentImagePath, documentPath}) {
        if (path.isEmpty())
            continue;
        QDir folder = QFileInfo(path).absoluteDir();
        // An image kept inside a document package: the folder holding the package.
        if (PackageFileDialog::isPackagePath(folder.absolutePath()))
            folder.cdUp();
        if (folder.exists())
            return folder.absolutePath();
    }
    const QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    return QDir(pictures).exists() ? pictures : QDir::homePath();
}

void ImageChooser::run(QWidget* window, unsigned track, const QString& startFolder,
    std::function<void(const QString&)> chosen)
{
    const QString title = track == 0 ? tr("Choose First Image") : tr("Choose Last Image");
    auto* dialog = new QFileDialog(window, title, startFolder);
    dialog->setObjectName(QStringLiteral("imageChooser"));
    dialog->setAccessibleName(title);
    dialog->setAcceptMode(QFileDialog::AcceptOpen);
    dialog->setFileMode(QFileDialog::ExistingFile);
    dialog->setNameFilters(nameFilters());
    dialog->setWindowModality(Qt::WindowModal);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(dialog, &QFileDialog::fileSelected, window, std::move(chosen));
    dialog->open();
}

} // namespace plyra
