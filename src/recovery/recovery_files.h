// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <string>

namespace plyra {

/// Writes bytes to a file whole and on the disk: beside it first, synced, then renamed
/// over it, and its folder synced. False, with the reason in error, when it cannot.
/// Threads: any thread.
bool writeDurably(const std::string& bytes, const QString& path, QString* error = nullptr);

} // namespace plyra
