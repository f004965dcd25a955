// SPDX-License-Identifier: MIT
#include "recovery/recovery_files.h"

#include "platform/atomic_file_writer.h"
#include "platform/durable_files.h"

#include <QFile>

#include <cerrno>
#include <cstring>

namespace plyra {

bool writeDurably(const std::string& bytes, const QString& path, QString* error)
{
    const std::string target = QFile::encodeName(path).toStdString();
    std::string reason;
    const std::unique_ptr<SideFile> side = AtomicFileWriter::stage(target, bytes.data(), bytes.size(), &reason);
    int code = side ? syncFile(side->path()) : 0;
    if (side && code == 0 && !side->commit(target))
        code = errno;
    if (side && code != 0)
        reason = std::strerror(code);
    if (!side || code != 0) {
        if (error)
            *error = QStringLiteral("%1: %2").arg(path, QString::fromLocal8Bit(reason.c_str()));
        return false;
    }
    syncFolder(parentFolder(target));
    return true;
}

} // namespace plyra
