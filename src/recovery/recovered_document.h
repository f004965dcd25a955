// SPDX-License-Identifier: MIT
#pragma once

#include "recovery/recovery_copy.h"

#include <QString>

#include <memory>

namespace plyra {

class MorphDocument;

/// Opens a recovery copy as the document it was made of: its lines, images and
/// settings, marked edited, belonging to the package it was made for (to none for an
/// untitled one), so that saving writes to the original place. Images that are still
/// the files the copy linked are read from there again, with the names their package
/// gives them.
/// Threads: main thread only.
class RecoveredDocument {
public:
    /// Null, with the reason in error, when the copy cannot be read.
    static std::unique_ptr<MorphDocument> open(const RecoveryCopy& copy, QString* error = nullptr);
};

} // namespace plyra
