// SPDX-License-Identifier: MIT
#include "model/document_package.h"

#include "model/morph_document.h"
#include "model/package_carry_over.h"
#include "model/movie_settings_form.h"
#include "model/staged_directory.h"
#include "model/tiff_io.h"
#include "platform/log.h"
#include "platform/plist/xml_plist.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace plyra {
namespace {

constexpr const char* kFirstImagePath = "firstImagePath";
constexpr const char* kLastImagePath = "lastImagePath";
constexpr const char* kFrameWidth = "frameWidth";
constexpr const char* kFrameHeight = "frameHeight";
constexpr const char* kCodecFormat = "codecFormat";
constexpr const char* kCodecQuality = "codecQuality";
constexpr const char* kLineColorData = "lineColorData";
constexpr const char* kMorphLines = DocumentPackage::kMorphLinesKey;

QString packageText(const char* source)
{
    return QCoreApplication::translate("DocumentPackage", source);
}

std::string localPath(const QString& path)
{
    return QFile::encodeName(path).toStdString();
}

bool fail(QString* error, const QString& message)
{
    if (error)
        *error = message;
    return false;
}

// ---- writing -------------------------------------------------------------------------

QString imageFileName(unsigned track, bool pdf)
{
    return QStringLiteral("Image_%1.%2").arg(track).arg(pdf ? QLatin1String("pdf") : QLatin1String("tiff"));
}

// An image that did not load is the user's file, not ours: it keeps its place. Inside
// the package being replaced, or the one the document came from, it is carried into the
// new package under the name it has there; anywhere else its path is kept unchanged.
QString keptImageName(const MorphDocument& document, unsigned track, const QString& packagePath, PackageContents& contents)
{
    const QString location = document.imageURLInTrack(track);
    // Inside the package being replaced first: after the save only the new package is there.
    QString name = DocumentPackage::nameInside(packagePath, location);
    if (name.isEmpty())
        name = document.imageNameInPackageInTrack(track);
    if (name.isEmpty() && !document.fileLocation().isEmpty())
        name = DocumentPackage::nameInside(document.fileLocation(), location);
    if (name.isEmpty())
        return location;
    const QFileInfo file(location);
    if (file.exists() || file.isSymLink())
        contents.kept.push_back({location, name});
    return name;
}

// A track without an image still records its TIFF name; no file is written for it.
void collectImages(const MorphDocument& document, const QString& packagePath, PackageContents& contents)
{
    const char* const pathKeys[2] = {kFirstImagePath, kLastImagePath};
    for (unsigned track = 0; track < 2; ++track) {
        const QString location = document.imageURLInTrack(track);
        std::optional<DisplayImage> image = location.isEmpty() ? std::nullopt : document.imageInTrack(track);
        QString name;
        if (!location.isEmpty() && !image) {
            name = keptImageName(document, track, packagePath, contents);
        } else {
            name = imageFileName(track, image && image->isPdf());
            if (image)
                contents.images.push_back({name, std::move(*image)});
        }
        contents.info[pathKeys[track]] = name.toStdString();
    }
}

} // namespace

PackageContents DocumentPackage::contents(const MorphDocument& document, const QString& packagePath, bool withLines)
{
    PackageContents contents;
    // Keys this version does not read go back as they were; known keys are written
    // over them.
    contents.info = document.foreignPackageInfo();
    PropertyList::Array lines;
    for (std::size_t i = 0; withLines && i < document.morphLines().size(); ++i)
        lines.push_back(document.morphLines()[i]->pList());
    contents.info[kMorphLines] = std::move(lines);
    collectImages(document, packagePath, contents);
    // The frame size is two floats, written as reals.
    contents.info[kFrameWidth] = static_cast<double>(static_cast<float>(document.frameSize().width()));
    contents.info[kFrameHeight] = static_cast<double>(static_cast<float>(document.frameSize().height()));
    contents.info[kCodecFormat] = document.codecFormat().toStdString();
    contents.info[kCodecQuality] = static_cast<std::int64_t>(document.codecQuality());
    if (const LineColor::Ptr& color = document.storedLineColor()) {
        std::vector<std::uint8_t> archive = color->archive();
        if (!archive.empty())
            contents.info[kLineColorData] = PropertyList::Data(std::move(archive));
    }
    if (const std::optional<MovieSettings>& movie = document.movieSettings())
        contents.info[MovieSettingsForm::kKey] = MovieSettingsForm::toPropertyList(*movie);
    return contents;
}

QString DocumentPackage::nameInside(const QString& folder, const QString& path)
{
    const QString base = QDir::cleanPath(QFileInfo(folder).absoluteFilePath()) + QLatin1Char('/');
    const QString cleaned = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    if (cleaned.startsWith(base) && cleaned.size() > base.size())
        return cleaned.mid(base.size());
    // The same folder under another name (a symbolic link on the way).
    const QString canonicalFolder = QFileInfo(folder).canonicalFilePath();
    const QString canonicalFile = QFileInfo(QFileInfo(path).absolutePath()).canonicalFilePath();
    if (canonicalFolder.isEmpty() || canonicalFile.isEmpty())
        return {};
    const QString resolved = canonicalFile + QLatin1Char('/') + QFileInfo(path).fileName();
    const QString canonicalBase = canonicalFolder + QLatin1Char('/');
    return resolved.startsWith(canonicalBase) ? resolved.mid(canonicalBase.size()) : QString();
}

namespace {

bool writeBytes(const QByteArray& bytes, const QString& path, QString* reason)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size() || !file.flush()) {
        *reason = file.errorString();
        return false;
    }
    return true;
}

bool writeDictionary(const PackageContents& contents, const StagedDirectory& staged, QString* error)
{
    std::string reason;
    const QString target = staged.stagingFilePath(QLatin1String(DocumentPackage::kInfoFileName));
    if (writeXmlPropertyListFile(PropertyList(contents.info), localPath(target), &reason))
        return true;
    const QString finalPath = QDir(staged.finalPath()).filePath(QLatin1String(DocumentPackage::kInfoFileName));
    logLine(formatString("Plyra could not save dictionary at %s", localPath(finalPath).c_str()));
    return fail(error, packageText(QT_TRANSLATE_NOOP("DocumentPackage", "Could not save “%1”: %2")).arg(finalPath, QString::fromStdString(reason)));
}

bool writeImage(const PackageImage& entry, const StagedDirectory& staged, QString* error)
{
    const QString target = staged.stagingFilePath(entry.fileName);
    QString reason;
    const bool written = entry.image.isPdf() ? writeBytes(entry.image.pdfData, target, &reason)
                                             : TiffIo::write(entry.image.raster, target, &reason);
    if (written)
        return true;
    const QString finalPath = QDir(staged.finalPath()).filePath(entry.fileName);
    logLine(formatString("Failed to write image %s", localPath(finalPath).c_str()));
    return fail(error, packageText(QT_TRANSLATE_NOOP("DocumentPackage", "Could not save the image “%1”: %2")).arg(finalPath, reason));
}

// ---- reading -------------------------------------------------------------------------

/// Keeps undo registration off while a package is read, so that a freshly read
/// document has no undo steps.
class UndoSuspension {
public:
    explicit UndoSuspension(UndoManager& undo)
        : m_undo(undo)
    {
        m_undo.disableUndoRegistration();
    }
    ~UndoSuspension() { m_undo.enableUndoRegistration(); }
    UndoSuspension(const UndoSuspension&) = delete;
    UndoSuspension& operator=(const UndoSuspension&) = delete;

private:
    UndoManager& m_undo;
};

// A path beginning with "/" is used unchanged, any other is taken inside the package.
// Empty when the entry is missing, empty or not a string.
QString imagePath(const PropertyList& info, const char* key, const QString& packagePath)
{
    const PropertyList* value = info.find(key);
    const std::string* text = value ? value->string() : nullptr;
    if (!text || text->empty())
        return {};
    const QString path = QString::fromStdString(*text);
    return path.startsWith(QLatin1Char('/')) ? path : QDir(packagePath).filePath(path);
}

void readImages(MorphDocument& document, const PropertyList& info, const QString& packagePath)
{
    const char* const pathKeys[2] = {kFirstImagePath, kLastImagePath};
    for (unsigned track = 0; track < 2; ++track) {
        const QString path = imagePath(info, pathKeys[track], packagePath);
        if (!path.isEmpty())
            document.setImageFromURL(path, track, DocumentPackage::nameInside(packagePath, path));
    }
}

// A number, or a number written as a string by another writer: both are read by their
// integer value.
bool holdsInteger(const PropertyList* value)
{
    return value && (value->isNumber() || value->string());
}

// The stored reals are read as integers: the fraction is dropped.
void readFrameSize(MorphDocument& document, const PropertyList& info)
{
    QSizeF size = document.frameSize();
    if (const PropertyList* width = info.find(kFrameWidth); holdsInteger(width))
        size.setWidth(static_cast<double>(width->integerValue()));
    if (const PropertyList* height = info.find(kFrameHeight); holdsInteger(height))
        size.setHeight(static_cast<double>(height->integerValue()));
    document.setFrameSize(size);
}

void readCodecSettings(MorphDocument& document, const PropertyList& info)
{
    if (const PropertyList* format = info.find(kCodecFormat); format && format->string())
        document.setCodecFormat(QString::fromStdString(*format->string()));
    if (const PropertyList* quality = info.find(kCodecQuality); holdsInteger(quality)) {
        const std::int64_t value = quality->integerValue();
        document.setCodecQuality(static_cast<int>(std::clamp<std::int64_t>(value, INT32_MIN, INT32_MAX)));
    }
}

void readLineColor(MorphDocument& document, const PropertyList& info)
{
    const PropertyList* value = info.find(kLineColorData);
    if (!value)
        return;
    LineColor::Ptr color;
    if (const PropertyList::Data* archive = value->data())
        color = LineColor::fromArchive(*archive);
    if (!color) {
        logLine("Failed to read line colour data");
        return;
    }
    document.restoreLineColor(color);
}

// The keys of the file that writing the document as read would not write: those this
// version does not know (or knows only as the value it leaves out), kept as they were.
PropertyList::Dictionary keysNotTakenUp(const PropertyList::Dictionary& read, const PropertyList::Dictionary& written)
{
    PropertyList::Dictionary foreign;
    for (const auto& [key, value] : read)
        if (!written.contains(key))
            foreign.emplace(key, value);
    return foreign;
}

// Each line goes through the joining rule, which restores the connections that the
// file does not store.
void readLines(MorphDocument& document, const PropertyList& info)
{
    const PropertyList* lines = info.find(kMorphLines);
    if (!lines || !lines->array())
        return;
    for (const PropertyList& entry : *lines->array())
        if (MorphLine::Ptr line = MorphLine::fromValues(entry))
            document.addMorphLine(line);
}

} // namespace

bool DocumentPackage::read(MorphDocument& document, const QString& packagePath, QString* error)
{
    StagedDirectory::removeLeftovers(packagePath);
    UndoSuspension suspended(document.undoManager());
    const QString infoPath = QDir(packagePath).filePath(QLatin1String(kInfoFileName));
    std::string reason;
    const std::optional<PropertyList> info = readPropertyListFile(localPath(infoPath), &reason);
    if (!info)
        return fail(error, packageText(QT_TRANSLATE_NOOP("DocumentPackage", "The document “%1” could not be read: %2."))
                               .arg(packagePath, QString::fromStdString(reason)));
    if (!info->isDictionary())
        return fail(error, packageText(QT_TRANSLATE_NOOP("DocumentPackage", "The document “%1” could not be read: “%2” does not hold a dictionary."))
                               .arg(packagePath, QLatin1String(kInfoFileName)));
    readImages(document, *info, packagePath);
    readFrameSize(document, *info);
    readCodecSettings(document, *info);
    readLineColor(document, *info);
    if (const PropertyList* movie = info->find(MovieSettingsForm::kKey))
        document.setMovieSettings(MovieSettingsForm::fromPropertyList(*movie));
    readLines(document, *info);
    document.setForeignPackageInfo({});
    document.setForeignPackageInfo(keysNotTakenUp(*info->dictionary(), contents(document, packagePath).info));
    return true;
}

bool DocumentPackage::write(const MorphDocument& document, const QString& packagePath, QString* error,
    const CommitHooks& hooks)
{
    StagedDirectory::removeLeftovers(packagePath);
    const PackageContents contents = DocumentPackage::contents(document, packagePath);
    // Each step that can fail says so itself, in the log and in the message: the folder
    // the package is built in, the dictionary, each image, what is carried over, and
    // moving it into place.
    StagedDirectory staged(packagePath, hooks);
    if (!staged.isValid()) {
        logLine(formatString("Plyra could not create a folder to save %s in", localPath(staged.finalPath()).c_str()));
        return fail(error, staged.errorString());
    }
    if (!writeDictionary(contents, staged, error))
        return false;
    for (const PackageImage& entry : contents.images)
        if (!writeImage(entry, staged, error))
            return false;
    if (!PackageCarryOver::keepImages(contents, staged, error) || !PackageCarryOver::carryForeignEntries(contents, staged, error))
        return false;
    if (staged.commit(error))
        return true;
    logLine(formatString("Plyra could not move the saved package into place at %s", localPath(staged.finalPath()).c_str()));
    return false;
}

} // namespace plyra
