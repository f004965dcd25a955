// SPDX-License-Identifier: MIT
#include "render/image_sequence_writer.h"

#include "engine/image_conversion.h"
#include "platform/atomic_file_writer.h"

#include <QCoreApplication>
#include <QFile>

#include <cerrno>
#include <cstring>
#include <new>

namespace plyra {
namespace {

QString fileName(const std::string& path)
{
    return QFile::decodeName(path.c_str());
}

} // namespace

ImageSequenceWriter::ImageSequenceWriter(FrameFileFormat format, unsigned threads)
    : m_format(format)
{
    for (unsigned k = 0; k < std::max(threads, 1u); ++k)
        m_threads.emplace_back([this] { run(); });
}

ImageSequenceWriter::~ImageSequenceWriter()
{
    {
        const std::lock_guard guard(m_mutex);
        m_stop = true;
        m_tasks.clear();
    }
    m_wake.notify_all();
    for (std::thread& thread : m_threads)
        thread.join();
}

void ImageSequenceWriter::push(std::uint32_t frame, Image image, std::string target)
{
    {
        const std::lock_guard guard(m_mutex);
        m_tasks.push_back({frame, std::move(image), std::move(target)});
    }
    m_wake.notify_one();
}

unsigned ImageSequenceWriter::pending() const
{
    const std::lock_guard guard(m_mutex);
    return static_cast<unsigned>(m_tasks.size()) + m_inHand;
}

std::optional<QString> ImageSequenceWriter::failure() const
{
    const std::lock_guard guard(m_mutex);
    return m_failure;
}

void ImageSequenceWriter::waitUntilIdle()
{
    std::unique_lock lock(m_mutex);
    m_idle.wait(lock, [this] { return m_tasks.empty() && m_inHand == 0; });
}

void ImageSequenceWriter::run()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_wake.wait(lock, [this] { return m_stop || !m_tasks.empty(); });
        if (m_tasks.empty())
            return; // stopped
        const Task task = std::move(m_tasks.front());
        m_tasks.pop_front();
        ++m_inHand;
        lock.unlock();
        write(task);
        lock.lock();
        --m_inHand;
        if (m_tasks.empty() && m_inHand == 0)
            m_idle.notify_all();
    }
}

void ImageSequenceWriter::write(const Task& task)
{
    QString reason;
    std::unique_ptr<SideFile> side;
    // A worker has nobody to throw to: a frame too large for memory is a failed frame.
    try {
        const std::optional<Bitmap> bitmap = bitmapFromImage(task.image);
        const QByteArray bytes = bitmap ? encodeFrame(pixelRowsOfBitmap(*bitmap), m_format, &reason) : QByteArray();
        std::string written;
        if (!bytes.isEmpty())
            side = AtomicFileWriter::stage(task.target, bytes.constData(), static_cast<std::size_t>(bytes.size()), &written);
        if (!bytes.isEmpty() && !side)
            reason = QString::fromStdString(written);
    } catch (const std::bad_alloc&) {
        reason = QCoreApplication::translate("ImageSequenceWriter", "there is not enough memory for it");
    }
    const std::lock_guard guard(m_mutex);
    if (side)
        m_staged[task.frame] = {std::move(side), task.target};
    else if (!m_failure)
        m_failure = QCoreApplication::translate("ImageSequenceWriter", "cannot write '%1': %2").arg(fileName(task.target),
            reason.isEmpty() ? QCoreApplication::translate("ImageSequenceWriter", "the frame could not be rendered") : reason);
}

std::unique_ptr<SideFile> ImageSequenceWriter::copyOf(const SideFile& source, const std::string& target,
                                                      QString* error) const
{
    QFile file(fileName(source.path()));
    const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    std::string reason = file.errorString().toStdString();
    std::unique_ptr<SideFile> copy = bytes.isEmpty() ? nullptr
        : AtomicFileWriter::stage(target, bytes.constData(), static_cast<std::size_t>(bytes.size()), &reason);
    if (!copy && error)
        *error = QCoreApplication::translate("ImageSequenceWriter", "cannot write '%1': %2").arg(fileName(target), QString::fromStdString(reason));
    return copy;
}

bool ImageSequenceWriter::commit(std::size_t fileCount, const FileTarget& target, QString* error)
{
    waitUntilIdle();
    auto fail = [error](const QString& reason) {
        if (error)
            *error = reason;
        return false;
    };
    if (const std::optional<QString> failed = failure())
        return fail(*failed);
    // Every file made before any takes its name: a frame's own file, or a copy of it.
    std::vector<std::pair<SideFile*, std::string>> files;
    std::vector<std::unique_ptr<SideFile>> copies;
    for (std::size_t index = 0; index < fileCount; ++index) {
        std::uint32_t frame = 0;
        QString reason;
        const std::optional<std::string> path = target(index, &frame, &reason);
        if (!path)
            return fail(reason);
        const auto staged = m_staged.find(frame);
        if (staged == m_staged.end())
            return fail(QCoreApplication::translate("ImageSequenceWriter", "frame %1 was not rendered").arg(frame + 1));
        if (staged->second.target == *path) {
            files.emplace_back(staged->second.side.get(), *path);
            continue;
        }
        copies.push_back(copyOf(*staged->second.side, *path, &reason));
        if (!copies.back())
            return fail(reason);
        files.emplace_back(copies.back().get(), *path);
    }
    for (const auto& [side, path] : files)
        if (!side->commit(path))
            return fail(QCoreApplication::translate("ImageSequenceWriter", "cannot move the frame into place at '%1': %2")
                            .arg(fileName(path), QString::fromLocal8Bit(std::strerror(errno))));
    m_staged.clear();
    return true;
}

} // namespace plyra
