// SPDX-License-Identifier: MIT
// Turns one fuzz input into a document package on disk, so that the package reader meets
// every kind of directory entry a hostile package can hold.
//
// Input: three bytes choosing what "info.plist", "Image_0.tiff" and "Image_1.tiff" are
// (the value modulo 8, see EntryKind), then the bytes of "info.plist". Images that are
// regular files hold a small valid picture: the entries' kinds are fuzzed here, the
// image decoders have fuzzers and tests of their own.
#pragma once

#include <QByteArray>
#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QImageWriter>

#include <cstddef>
#include <cstdint>
#include <sys/stat.h>
#include <unistd.h>

namespace plyra::fuzz {

enum class EntryKind : std::uint8_t {
    Regular = 0,   // the content
    Fifo = 1,      // a named pipe nobody writes to
    ZeroLink = 2,  // a symbolic link to /dev/zero
    Folder = 3,    // a directory
    Empty = 4,     // a regular file of no bytes
    Sparse = 5,    // the content, then a hole up to 30 GB
    StdinLink = 6, // a symbolic link to /dev/stdin
    Missing = 7,   // nothing
};

inline QByteArray tinyPng()
{
    QImage image(4, 3, QImage::Format_RGBA8888);
    image.fill(Qt::magenta);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter(&buffer, "png").write(image);
    return bytes;
}

inline void makeEntry(const QString& path, EntryKind kind, const QByteArray& content)
{
    const QByteArray local = QFile::encodeName(path);
    switch (kind) {
    case EntryKind::Fifo:
        ::mkfifo(local.constData(), 0644);
        return;
    case EntryKind::ZeroLink:
        QFile::link(QStringLiteral("/dev/zero"), path);
        return;
    case EntryKind::StdinLink:
        QFile::link(QStringLiteral("/dev/stdin"), path);
        return;
    case EntryKind::Folder:
        QDir().mkdir(path);
        return;
    case EntryKind::Missing:
        return;
    case EntryKind::Regular:
    case EntryKind::Empty:
    case EntryKind::Sparse:
        break;
    }
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return;
    if (kind != EntryKind::Empty)
        file.write(content);
    if (kind == EntryKind::Sparse)
        file.resize(qint64{30} << 30);
}

/// Builds the package of the input in `package` (which must not exist yet).
inline void buildPackage(const QString& package, const std::uint8_t* data, std::size_t size)
{
    QDir().mkpath(package);
    auto kindAt = [&](std::size_t i) { return static_cast<EntryKind>(i < size ? data[i] % 8 : 0); };
    const std::size_t head = size < 3 ? size : 3;
    const QByteArray info(reinterpret_cast<const char*>(data + head), static_cast<qsizetype>(size - head));
    static const QByteArray picture = tinyPng();
    makeEntry(package + QStringLiteral("/info.plist"), kindAt(0), info);
    makeEntry(package + QStringLiteral("/Image_0.tiff"), kindAt(1), picture);
    makeEntry(package + QStringLiteral("/Image_1.tiff"), kindAt(2), picture);
}

} // namespace plyra::fuzz
