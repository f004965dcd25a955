// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>
#include <QString>

#include <optional>

class QMimeData;

namespace plyra {

/// Reads what a drag offers an editor: the file named by a URL (as file managers offer
/// files, text/uri-list) or by a plain file name (text), the URL winning when both are
/// offered; and whether that file looks like an image that can be read, judged from its
/// first bytes so that it is cheap enough to ask while dragging.
/// Threads: main thread.
class ImageDrop {
    Q_DECLARE_TR_FUNCTIONS(ImageDrop)

public:
    /// The first URL if any is offered (it must name a local file), else the last file
    /// name of the text. Nothing, with a reason when there is one, for neither.
    static std::optional<QString> droppedFile(const QMimeData& data, QString* reason = nullptr);
    /// Whether the file exists and starts like an image the document can read.
    static bool looksLikeImage(const QString& path, QString* reason = nullptr);
};

} // namespace plyra
