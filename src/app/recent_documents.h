// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

namespace plyra {

/// The documents opened or saved last, newest first, kept in the user defaults under
/// "recentDocuments". Documents that no longer exist are left out when listed.
/// Threads: main thread only.
class RecentDocuments {
public:
    static constexpr int kMaximum = 10;

    QStringList paths() const;
    void add(const QString& path);
    void clear();
};

} // namespace plyra
