// SPDX-License-Identifier: MIT
#include "recovery/recovery_copy.h"

#include "recovery/recovery_files.h"
#include "platform/plist/xml_plist.h"

#include <QDir>
#include <QFile>

namespace plyra {
namespace {

constexpr const char* kOwner = "owner";
constexpr const char* kDocumentPath = "documentPath";
constexpr const char* kDisplayName = "displayName";
constexpr const char* kSavedAt = "savedAt";
constexpr const char* kImageOrigins = "imageOrigins";
constexpr const char* kImageNames = "imageNamesInPackage";

QString stringAt(const PropertyList& dictionary, const char* key)
{
    const PropertyList* value = dictionary.find(key);
    const std::string* text = value ? value->string() : nullptr;
    return text ? QString::fromStdString(*text) : QString();
}

std::array<QString, 2> pairAt(const PropertyList& dictionary, const char* key)
{
    std::array<QString, 2> pair;
    const PropertyList* value = dictionary.find(key);
    const PropertyList::Array* array = value ? value->array() : nullptr;
    for (std::size_t i = 0; array && i < std::min<std::size_t>(2, array->size()); ++i)
        if (const std::string* text = (*array)[i].string())
            pair[i] = QString::fromStdString(*text);
    return pair;
}

PropertyList::Array arrayOf(const std::array<QString, 2>& pair)
{
    return {PropertyList(pair[0].toStdString()), PropertyList(pair[1].toStdString())};
}

} // namespace

QString RecoveryCopy::packagePath() const
{
    return QDir(folder).filePath(QLatin1String(kPackageName));
}

QString RecoveryCopy::descriptionPath() const
{
    return QDir(folder).filePath(QLatin1String(kDescriptionName));
}

std::optional<RecoveryCopy> RecoveryCopy::read(const QString& folder)
{
    RecoveryCopy copy;
    copy.folder = folder;
    const std::optional<PropertyList> description = readPropertyListFile(QFile::encodeName(copy.descriptionPath()).toStdString());
    if (!description || !description->isDictionary())
        return std::nullopt;
    const std::optional<ProcessIdentity> owner = ProcessIdentity::fromToken(stringAt(*description, kOwner).toStdString());
    const QDateTime savedAt = QDateTime::fromString(stringAt(*description, kSavedAt), Qt::ISODateWithMs);
    if (!owner || !savedAt.isValid())
        return std::nullopt;
    copy.owner = *owner;
    copy.savedAt = savedAt;
    copy.documentPath = stringAt(*description, kDocumentPath);
    copy.displayName = stringAt(*description, kDisplayName);
    copy.imageOrigins = pairAt(*description, kImageOrigins);
    copy.imageNamesInPackage = pairAt(*description, kImageNames);
    return copy;
}

bool RecoveryCopy::writeDescription(QString* error) const
{
    const PropertyList::Dictionary description{
        {kOwner, owner.token()},
        {kDocumentPath, documentPath.toStdString()},
        {kDisplayName, displayName.toStdString()},
        {kSavedAt, savedAt.toString(Qt::ISODateWithMs).toStdString()},
        {kImageOrigins, arrayOf(imageOrigins)},
        {kImageNames, arrayOf(imageNamesInPackage)},
    };
    return writeDurably(writeXmlPropertyList(PropertyList(description)), descriptionPath(), error);
}

} // namespace plyra
