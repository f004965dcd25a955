// SPDX-License-Identifier: MIT
#include "platform/qt/user_defaults.h"

namespace plyra {

UserDefaults::UserDefaults()
    : m_settings(std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope,
          QStringLiteral("Plyra"), QStringLiteral("Plyra")))
{
    // PLYRA_DEFAULTS_FILE keeps command-line runs and CI away from the user's settings.
    const QString file = qEnvironmentVariable("PLYRA_DEFAULTS_FILE");
    if (!file.isEmpty())
        useFile(file);
}

UserDefaults& UserDefaults::standard()
{
    static UserDefaults defaults;
    return defaults;
}

void UserDefaults::useFile(const QString& path)
{
    m_settings = std::make_unique<QSettings>(path, QSettings::IniFormat);
}

void UserDefaults::registerDefaults(const QVariantMap& defaults)
{
    for (auto it = defaults.begin(); it != defaults.end(); ++it)
        m_registered.insert(it.key(), it.value());
}

QVariant UserDefaults::object(const QString& key) const
{
    const QVariant stored = m_settings->value(key);
    if (stored.isValid())
        return stored;
    return m_registered.value(key);
}

QString UserDefaults::string(const QString& key) const
{
    const QVariant value = object(key);
    return value.canConvert<QString>() ? value.toString() : QString();
}

qint64 UserDefaults::integer(const QString& key) const
{
    const QVariant value = object(key);
    if (value.typeId() == QMetaType::Bool)
        return value.toBool() ? 1 : 0;
    bool ok = false;
    const double number = value.toDouble(&ok);
    return ok ? static_cast<qint64>(number) : 0;
}

bool UserDefaults::boolean(const QString& key) const
{
    const QVariant value = object(key);
    if (value.typeId() == QMetaType::QString) {
        const QString text = value.toString().trimmed().toLower();
        return text == QLatin1String("yes") || text == QLatin1String("true") || integer(key) != 0;
    }
    return value.toBool();
}

void UserDefaults::setObject(const QString& key, const QVariant& value)
{
    m_settings->setValue(key, value);
}

void UserDefaults::remove(const QString& key)
{
    m_settings->remove(key);
}

void UserDefaults::synchronize()
{
    m_settings->sync();
}

} // namespace plyra
