// SPDX-License-Identifier: MIT
// Carrying a folder's entries into another: hard links on the same file system, copies
// that keep mode and times across file systems, links and FIFOs made anew.
#include "platform/folder_carry_over.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

namespace plyra {
namespace {

namespace fs = std::filesystem;

struct stat statOf(const fs::path& path)
{
    struct stat info {};
    ::lstat(path.c_str(), &info);
    return info;
}

TEST(FolderCarryOver, LinksWhereItCanAndCopiesWithModeAndTimesWhereItCannot)
{
    const fs::path scratch = fs::path(PLYRA_BINARY_DIR) / "test-output" / "folder-carry-over";
    // tmpfs, where it is another file system than the build folder: hard links fail there.
    const fs::path elsewhere = fs::exists("/dev/shm") ? fs::path("/dev/shm") / ("plyra-carry-" + std::to_string(::getpid())) : scratch / "same";
    for (const fs::path& source : {scratch / "same", elsewhere}) {
        SCOPED_TRACE(source.string());
        fs::remove_all(source);
        fs::remove_all(scratch / "to");
        fs::create_directories(source / "renders");
        fs::create_directories(scratch / "to");
        std::ofstream(source / "renders" / "final.mov") << std::string(300000, 'm');
        std::ofstream(source / "skip.txt") << "skipped";
        ::chmod((source / "renders" / "final.mov").c_str(), 0640);
        const timespec old[2] = {{1000000000, 0}, {1000000000, 500}};
        ::utimensat(AT_FDCWD, (source / "renders" / "final.mov").c_str(), old, 0);
        fs::create_symlink("renders/final.mov", source / "link");
        ASSERT_EQ(::mkfifo((source / "fifo").c_str(), 0600), 0);

        const auto failure = FolderCarryOver::carryTree(source, scratch / "to", [](const std::string& name) { return name == "skip.txt"; });
        ASSERT_FALSE(failure) << failure->path << ": " << failure->reason;
        const struct stat from = statOf(source / "renders" / "final.mov");
        const struct stat to = statOf(scratch / "to" / "renders" / "final.mov");
        EXPECT_EQ(to.st_ino == from.st_ino, from.st_dev == statOf(scratch / "to").st_dev);
        EXPECT_EQ(to.st_size, 300000);
        EXPECT_EQ(to.st_mode & 07777, 0640u);
        EXPECT_EQ(to.st_mtim.tv_sec, 1000000000);
        EXPECT_EQ(fs::read_symlink(scratch / "to" / "link"), "renders/final.mov");
        EXPECT_TRUE(fs::is_fifo(fs::symlink_status(scratch / "to" / "fifo")));
        EXPECT_FALSE(fs::exists(scratch / "to" / "skip.txt"));
        fs::remove_all(source);
    }
    fs::remove_all(scratch);
}

} // namespace
} // namespace plyra
