// SPDX-License-Identifier: MIT
// Reading only regular files and writing only over regular files or new names, with the
// hostile entries a scratch folder can hold: FIFOs, devices, links to them, sparse files.
#include "platform/atomic_file_writer.h"
#include "platform/output_path_guard.h"
#include "platform/process_identity.h"
#include "platform/regular_file.h"
#include "platform/stop_request.h"
#include "platform/temporary_files.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/wait.h>
#include <unistd.h>

namespace plyra {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

bool isRoot()
{
    return ::geteuid() == 0;
}

void writeText(const fs::path& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary) << text;
}

class HostileFile : public ::testing::Test {
public:
    std::string path(const std::string& name) const { return (m_dir / name).string(); }

    // A character device like /dev/null, made in the scratch folder; only root may.
    bool makeNullDevice(const std::string& name) const
    {
        return isRoot() && ::mknod(path(name).c_str(), S_IFCHR | 0666, makedev(1, 3)) == 0;
    }

protected:
    void SetUp() override
    {
        const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
        m_dir = fs::path(PLYRA_BINARY_DIR) / "test-output" / (std::string("hostile-file-") + test->name());
        fs::remove_all(m_dir);
        fs::create_directories(m_dir);
    }
    void TearDown() override
    {
        StopRequest::clear();
        fs::remove_all(m_dir);
    }

    fs::path m_dir;
};

struct ReadCase {
    const char* name;
    std::function<void(HostileFile&, const std::string&)> make;
    FileProblem problem;
    const char* reason;
    bool needsRoot = false;
};

TEST_F(HostileFile, OnlyRegularFilesWithinTheLimitAreReadAndNothingBlocks)
{
    constexpr std::uint64_t limit = 1024;
    const std::vector<ReadCase> cases{
        {"regular", [](HostileFile&, const std::string& p) { writeText(p, "hello"); }, FileProblem::None, ""},
        {"missing", [](HostileFile&, const std::string&) {}, FileProblem::Missing, "no such file"},
        {"folder", [](HostileFile&, const std::string& p) { fs::create_directory(p); }, FileProblem::Folder, "folder"},
        {"fifo", [](HostileFile&, const std::string& p) { ASSERT_EQ(::mkfifo(p.c_str(), 0644), 0); },
         FileProblem::NotRegular, "it is a FIFO (named pipe), not a regular file"},
        {"link-to-zero", [](HostileFile&, const std::string& p) { fs::create_symlink("/dev/zero", p); },
         FileProblem::NotRegular, "character device"},
        {"device", [](HostileFile& t, const std::string&) { ASSERT_TRUE(t.makeNullDevice("device")); },
         FileProblem::NotRegular, "character device", true},
        {"empty", [](HostileFile&, const std::string& p) { writeText(p, ""); }, FileProblem::Empty, "empty"},
        {"sparse-30g", [](HostileFile&, const std::string& p) {
             writeText(p, "x");
             fs::resize_file(p, std::uint64_t{30} << 30);
         }, FileProblem::TooLarge, "30.0 GB"},
        {"one-byte-over", [](HostileFile&, const std::string& p) { writeText(p, std::string(limit + 1, 'a')); },
         FileProblem::TooLarge, "at most 1 KB"},
        {"at-the-limit", [](HostileFile&, const std::string& p) { writeText(p, std::string(limit, 'a')); },
         FileProblem::None, ""},
    };
    for (const ReadCase& c : cases) {
        SCOPED_TRACE(c.name);
        if (c.needsRoot && !isRoot()) {
            std::printf("[  SKIPPED ] %s: making device nodes needs root\n", c.name);
            continue;
        }
        const std::string file = path(c.name);
        c.make(*this, file);
        FileReadError error;
        const Clock::time_point start = Clock::now();
        const auto bytes = RegularFile::read(file, limit, &error);
        EXPECT_LT(Clock::now() - start, std::chrono::seconds(1));
        EXPECT_EQ(bytes.has_value(), c.problem == FileProblem::None);
        EXPECT_EQ(error.problem, c.problem);
        EXPECT_NE(error.reason.find(c.reason), std::string::npos) << error.reason;
    }
}

TEST_F(HostileFile, AStopRequestEndsAReadBetweenChunks)
{
    writeText(path("big"), std::string(std::size_t{3} << 20, 'b'));
    StopRequest::request();
    FileReadError error;
    EXPECT_FALSE(RegularFile::read(path("big"), std::uint64_t{16} << 20, &error));
    EXPECT_EQ(error.problem, FileProblem::Interrupted);
    StopRequest::clear();
    const auto bytes = RegularFile::read(path("big"), std::uint64_t{16} << 20, &error);
    ASSERT_TRUE(bytes);
    EXPECT_EQ(bytes->size(), std::size_t{3} << 20);
}

struct GuardCase {
    const char* target;
    std::function<void(HostileFile&)> make;
    const char* expected; // the path written to (relative to the scratch folder), or "" when refused
    const char* reason;
    bool needsRoot = false;
};

TEST_F(HostileFile, OutputGoesOnlyToRegularFilesOrNewNamesOutsideProtectedPlaces)
{
    const std::vector<GuardCase> cases{
        {"new.jpg", [](HostileFile&) {}, "new.jpg", ""},
        {"old.jpg", [](HostileFile& t) { writeText(t.path("old.jpg"), "x"); }, "old.jpg", ""},
        {"link.jpg", [](HostileFile& t) {
             writeText(t.path("real.jpg"), "x");
             fs::create_symlink(t.path("real.jpg"), t.path("link.jpg"));
         }, "real.jpg", ""},
        {"folder.jpg", [](HostileFile& t) { fs::create_directory(t.path("folder.jpg")); }, "", "it is a folder"},
        {"fifo.jpg", [](HostileFile& t) { ::mkfifo(t.path("fifo.jpg").c_str(), 0644); }, "", "FIFO"},
        {"null.jpg", [](HostileFile& t) { fs::create_symlink("/dev/null", t.path("null.jpg")); }, "",
         "it is a symbolic link to '/dev/null', which is a character device, not a regular file"},
        {"node", [](HostileFile& t) { ASSERT_TRUE(t.makeNullDevice("node")); }, "", "character device", true},
        {"dangling.jpg", [](HostileFile& t) { fs::create_symlink(t.path("nowhere"), t.path("dangling.jpg")); }, "",
         "leads nowhere"},
        {"no/such/f.jpg", [](HostileFile&) {}, "", "does not exist"},
        {"doc.plyra/info.plist", [](HostileFile&) {}, "", "the document being read"},
        {"doc.plyra/../doc.plyra/new.jpg", [](HostileFile&) {}, "", "the document being read"},
        {"alias/x.jpg", [](HostileFile& t) { fs::create_directory_symlink(t.path("doc.plyra"), t.path("alias")); }, "",
         "the document being read"},
        {"photo.jpg", [](HostileFile&) {}, "", "a file the document reads"},
        {"hardlink.jpg", [](HostileFile& t) { fs::create_hard_link(t.path("photo.jpg"), t.path("hardlink.jpg")); }, "",
         "a file the document reads"},
        {"doc.plyra/", [](HostileFile&) {}, "", "it names a folder"},
    };
    fs::create_directory(path("doc.plyra"));
    writeText(path("doc.plyra/info.plist"), "{}");
    writeText(path("photo.jpg"), "jpeg");
    OutputPathGuard guard;
    guard.protect(path("doc.plyra"));
    guard.protect(path("photo.jpg"));
    guard.protect(path("not-there")); // ignored
    for (const GuardCase& c : cases) {
        SCOPED_TRACE(c.target);
        if (c.needsRoot && !isRoot()) {
            std::printf("[  SKIPPED ] %s: making device nodes needs root\n", c.target);
            continue;
        }
        c.make(*this);
        std::string reason;
        const std::optional<std::string> target = guard.check(path(c.target), &reason);
        if (*c.expected) {
            ASSERT_TRUE(target) << reason;
            EXPECT_EQ(fs::weakly_canonical(*target), fs::weakly_canonical(path(c.expected)));
        } else {
            EXPECT_FALSE(target);
            EXPECT_NE(reason.find(c.reason), std::string::npos) << reason;
        }
    }
    std::string reason;
    EXPECT_FALSE(guard.check("", &reason));
    EXPECT_EQ(reason, "no file name was given");
}

TEST_F(HostileFile, AtomicWritesReplaceOnlyRegularFilesAndLeaveNoSideFiles)
{
    writeText(path("keep.txt"), "old");
    fs::permissions(path("keep.txt"), fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    std::string error;
    ASSERT_TRUE(AtomicFileWriter::write(path("keep.txt"), "new", 3, &error)) << error;
    EXPECT_EQ(fs::file_size(path("keep.txt")), 3u);
    EXPECT_EQ(fs::status(path("keep.txt")).permissions() & fs::perms::all,
              fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);

    // Through a link, the link stays and its file gets the bytes.
    fs::create_symlink(path("keep.txt"), path("link.txt"));
    ASSERT_TRUE(AtomicFileWriter::write(path("link.txt"), "newer", 5, &error)) << error;
    EXPECT_TRUE(fs::is_symlink(path("link.txt")));
    EXPECT_EQ(fs::file_size(path("keep.txt")), 5u);

    ASSERT_EQ(::mkfifo(path("fifo").c_str(), 0644), 0);
    EXPECT_FALSE(AtomicFileWriter::write(path("fifo"), "x", 1, &error));
    EXPECT_NE(error.find("FIFO"), std::string::npos) << error;
    EXPECT_TRUE(fs::is_fifo(path("fifo")));
    EXPECT_FALSE(AtomicFileWriter::write(path("none/x"), "x", 1, &error));
    EXPECT_NE(error.find("does not exist"), std::string::npos) << error;

    // keep.txt, link.txt and fifo: no side file stayed, none is listed.
    EXPECT_EQ(std::distance(fs::directory_iterator(m_dir), fs::directory_iterator()), 3);
    EXPECT_TRUE(TemporaryFiles::paths().empty());
}

// What a killed process left in /tmp goes at the next start; what a running one (this
// test) keeps, and whatever is not a temporary movie, stays.
TEST_F(HostileFile, TemporaryMoviesOfEndedProcessesGoAndOthersStay)
{
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0)
        ::_exit(0);
    const std::optional<ProcessIdentity> ended = ProcessIdentity::of(child);
    ::waitpid(child, nullptr, 0);
    const std::string endedToken = ended ? ended->token() : std::to_string(child) + "-1";
    const std::string self = ProcessIdentity::current().token();
    const struct {
        std::string name;
        bool removed;
    } entries[] = {
        {"Plyra_" + endedToken + "_a1B2c3", true},
        {"Plyra_" + self + "_d4E5f6", false},
        {"Plyra_notAToken_g7H8i9", false},
        {"Other_" + endedToken + "_j1K2l3", false},
    };
    for (const auto& entry : entries)
        writeText(path(entry.name), "movie");
    fs::create_directory(path("Plyra_" + endedToken + "_folder"));
    EXPECT_EQ(TemporaryFiles::removeThoseOfEndedProcesses(m_dir.string(), "Plyra_"), 1);
    for (const auto& entry : entries)
        EXPECT_EQ(fs::exists(path(entry.name)), !entry.removed) << entry.name;
    EXPECT_TRUE(fs::is_directory(path("Plyra_" + endedToken + "_folder")));
}

} // namespace
} // namespace plyra
