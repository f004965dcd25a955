// SPDX-License-Identifier: MIT
#pragma once

#include <QSettings>
#include <QString>
#include <QVariant>
#include <QVariantMap>

#include <memory>

namespace plyra {

/// The user's defaults: values the user chose that outlive a document, read with
/// registered fallbacks. Stored through QSettings; tests point it at a file of their own
/// so that they never touch the user's settings.
/// Threads: main thread only.
class UserDefaults {
public:
    static UserDefaults& standard();

    /// Keeps the defaults in the given INI file from now on (tests, portable set-ups).
    void useFile(const QString& path);
    /// Values answered for keys that have no stored value.
    void registerDefaults(const QVariantMap& defaults);

    /// The stored value, else the registered one, else an invalid QVariant.
    QVariant object(const QString& key) const;
    bool contains(const QString& key) const { return object(key).isValid(); }
    QString string(const QString& key) const;
    /// 0 when absent or not a number.
    qint64 integer(const QString& key) const;
    /// false when absent; numbers and the texts "YES"/"true"/"1" count as true.
    bool boolean(const QString& key) const;

    void setObject(const QString& key, const QVariant& value);
    void setInteger(const QString& key, qint64 value) { setObject(key, value); }
    void setBoolean(const QString& key, bool value) { setObject(key, value); }
    void remove(const QString& key);
    /// Where the values are kept, for messages that tell the user where to change one.
    QString fileName() const { return m_settings->fileName(); }
    void synchronize();

private:
    UserDefaults();

    std::unique_ptr<QSettings> m_settings;
    QVariantMap m_registered;
};

} // namespace plyra
