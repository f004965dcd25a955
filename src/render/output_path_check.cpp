// SPDX-License-Identifier: MIT
#include "render/output_path_check.h"

#include "model/morph_document.h"

#include <QFile>

namespace plyra {

bool checkOutputPath(const MorphDocument& document, const QString& path, QString* target, QString* error)
{
    std::string reason;
    const std::optional<std::string> checked = document.outputGuard().check(QFile::encodeName(path).toStdString(), &reason);
    if (!checked) {
        if (error)
            *error = QString::fromStdString(reason);
        return false;
    }
    if (target)
        *target = QFile::decodeName(QByteArray::fromStdString(*checked));
    return true;
}

} // namespace plyra
