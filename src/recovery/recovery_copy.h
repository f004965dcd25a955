// SPDX-License-Identifier: MIT
#pragma once

#include "platform/process_identity.h"

#include <QDateTime>
#include <QString>

#include <array>
#include <optional>

namespace plyra {

/// One recovery copy on disk: a folder of the recovery store that holds the copy of a
/// document with unsaved changes as a package ("copy.plyra"), and beside it
/// "recovery.plist", which says which process keeps it, for which document, since when,
/// and where its images came from.
/// Threads: a plain value; reading and writing it touch only its own folder.
struct RecoveryCopy {
    static constexpr const char* kPackageName = "copy.plyra";
    static constexpr const char* kDescriptionName = "recovery.plist";

    QString folder;
    ProcessIdentity owner;
    /// The package the changes belong to; empty for an untitled document.
    QString documentPath;
    QString displayName;
    QDateTime savedAt;
    /// Per track: where the image was when it was copied, and the name its package
    /// gave it, so that recovering can point at the original again.
    std::array<QString, 2> imageOrigins;
    std::array<QString, 2> imageNamesInPackage;

    QString packagePath() const;
    QString descriptionPath() const;
    /// Whether the process that keeps the copy has ended: then nobody else will.
    bool isOrphaned() const { return !owner.isRunning(); }

    /// The copy described in folder; none when its description is missing or damaged.
    static std::optional<RecoveryCopy> read(const QString& folder);
    /// Writes the description (beside it, then renamed into place and synced).
    bool writeDescription(QString* error = nullptr) const;
};

} // namespace plyra
