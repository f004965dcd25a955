// SPDX-License-Identifier: MIT
#include "render/frame_spool.h"

#include "platform/user_text.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace plyra {
namespace {

// A file without a name: nothing is left behind, whatever stops the process.
int openAnonymousFile(const std::string& directory)
{
    const int file = ::open(directory.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (file >= 0 || (errno != EOPNOTSUPP && errno != EISDIR))
        return file;
    // A file system without unnamed files: a named one, unlinked at once.
    std::string path = directory + "/Plyra_frames_XXXXXX";
    const int named = ::mkostemp(path.data(), O_CLOEXEC);
    if (named >= 0)
        ::unlink(path.c_str());
    return named;
}

// Moves size bytes at offset with `step` (pread or pwrite), which may move fewer at a time.
template<typename Bytes, typename Step>
bool transfer(Step step, int file, Bytes* data, std::size_t size, std::uint64_t offset)
{
    while (size > 0) {
        const ssize_t done = step(file, data, size, static_cast<off_t>(offset));
        if (done < 0 && errno == EINTR)
            continue;
        if (done <= 0) {
            if (done == 0)
                errno = EIO;
            return false;
        }
        data += done;
        size -= static_cast<std::size_t>(done);
        offset += static_cast<std::uint64_t>(done);
    }
    return true;
}

} // namespace

FrameSpool::FrameSpool(const std::string& directory)
    : m_file(openAnonymousFile(directory))
{
    if (m_file < 0)
        m_error = fillIn(userText("FrameSpool", "cannot make a file to keep frames in '%1': %2"), {directory, std::strerror(errno)});
}

FrameSpool::~FrameSpool()
{
    if (m_file >= 0)
        ::close(m_file);
}

bool FrameSpool::put(std::uint32_t frame, const Bitmap& bitmap)
{
    if (m_file < 0)
        return false;
    const auto rowBytes = static_cast<std::size_t>(bitmap.width()) * Bitmap::kBytesPerPixel;
    const Entry entry{m_end, bitmap.width(), bitmap.height()};
    for (int y = 0; y < bitmap.height(); ++y) {
        if (!transfer(::pwrite, m_file, bitmap.row(y), rowBytes, m_end)) {
            m_error = fillIn(userText("FrameSpool", "cannot keep a frame aside: %1"), {std::strerror(errno)});
            return false;
        }
        m_end += rowBytes;
    }
    m_entries[frame] = entry;
    return true;
}

std::optional<Bitmap> FrameSpool::get(std::uint32_t frame)
{
    const auto found = m_entries.find(frame);
    if (m_file < 0 || found == m_entries.end()) {
        m_error = fillIn(userText("FrameSpool", "frame %1 was not kept"), {std::to_string(frame + 1)});
        return std::nullopt;
    }
    const Entry& entry = found->second;
    Bitmap bitmap(entry.width, entry.height);
    const auto rowBytes = static_cast<std::size_t>(entry.width) * Bitmap::kBytesPerPixel;
    std::uint64_t offset = entry.offset;
    for (int y = 0; y < entry.height; ++y, offset += rowBytes)
        if (!transfer(::pread, m_file, bitmap.row(y), rowBytes, offset)) {
            m_error = fillIn(userText("FrameSpool", "cannot read a frame back: %1"), {std::strerror(errno)});
            return std::nullopt;
        }
    return bitmap;
}

} // namespace plyra
