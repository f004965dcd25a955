// SPDX-License-Identifier: MIT
#include "app/recent_documents.h"

#include "platform/qt/user_defaults.h"
#include "platform/qt/user_defaults_keys.h"

#include <QFileInfo>

namespace plyra {
namespace {

const QString kKey = QLatin1String(DefaultsKey::kRecentDocuments);

QStringList stored()
{
    return UserDefaults::standard().object(kKey).toStringList();
}

} // namespace

QStringList RecentDocuments::paths() const
{
    QStringList existing;
    for (const QString& path : stored())
        if (QFileInfo::exists(path))
            existing.append(path);
    return existing;
}

void RecentDocuments::add(const QString& path)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    QStringList list = stored();
    list.removeAll(absolute);
    list.prepend(absolute);
    while (list.size() > kMaximum)
        list.removeLast();
    UserDefaults::standard().setObject(kKey, list);
}

void RecentDocuments::clear()
{
    UserDefaults::standard().remove(kKey);
}

} // namespace plyra
