// SPDX-License-Identifier: MIT
// Saving packages that hold what the document does not own or could not read, and
// processes that die at any step of a save: nothing of the user's is ever lost, and what
// an interrupted save leaves is cleaned up at the next open or save.
#include "model/document_package.h"
#include "model/morph_document.h"
#include "model/staged_directory.h"
#include "platform/plist/xml_plist.h"

#include "document_test_support.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <map>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace plyra {
namespace {

using namespace std::chrono_literals;

std::string local(const QString& path)
{
    return QFile::encodeName(path).toStdString();
}

void writeFile(const QString& path, const QByteArray& bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate)) << path.toStdString();
    file.write(bytes);
}

QByteArray bytesOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Every entry under a folder by its relative path: a folder, the target of a link, or
/// the bytes of a file.
std::map<QString, QByteArray> treeOf(const QString& root)
{
    std::map<QString, QByteArray> tree;
    QDirIterator it(root, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QFileInfo info(it.next());
        const QString name = QDir(root).relativeFilePath(info.filePath());
        tree[name] = info.isSymLink() ? "link:" + info.symLinkTarget().toUtf8() : info.isDir() ? QByteArray("folder") : bytesOf(info.filePath());
    }
    return tree;
}

ino_t inodeOf(const QString& path)
{
    struct stat info {};
    return ::lstat(local(path).c_str(), &info) == 0 ? info.st_ino : 0;
}

PropertyList::Dictionary infoOf(const QString& package)
{
    const std::optional<PropertyList> info = readPropertyListFile(local(package + QStringLiteral("/info.plist")));
    return info && info->dictionary() ? *info->dictionary() : PropertyList::Dictionary();
}

QStringList besides(const QString& package)
{
    return QDir(QFileInfo(package).absolutePath())
        .entryList({QLatin1Char('.') + QFileInfo(package).fileName() + QLatin1Char('*')}, QDir::AllEntries | QDir::Hidden);
}

const PropertyList::Dictionary kLaterVersionValue{{"mode", "warp"}, {"strength", 0.5}};

class PackageHostile : public test::DocumentTestBase {
protected:
    QString package() const { return path("doc.plyra"); }
    QString inPackage(const QString& name) const { return package() + QLatin1Char('/') + name; }

    // A package as a user leaves it: a first image recorded as firstImage, a readable
    // last image, a line, keys of a later version, and files of the user's own.
    void makeUsersPackage(const std::string& firstImage)
    {
        QDir().mkpath(package());
        writePng("last.png", 40, 30);
        QFile::copy(path("last.png"), inPackage(QStringLiteral("Image_1.png")));
        const PropertyList::Dictionary info{
            {"firstImagePath", firstImage},
            {"lastImagePath", "Image_1.png"},
            {"morphLines", PropertyList::Array{makeLine({0.1f, 0.1f}, {0.5f, 0.5f})->pList()}},
            {"laterVersionKey", kLaterVersionValue},
            {"comment", "kept"},
        };
        ASSERT_TRUE(writeXmlPropertyListFile(PropertyList(info), local(inPackage(QStringLiteral("info.plist")))));
        writeFile(inPackage(QStringLiteral("notes.txt")), "my notes\n");
        writeFile(inPackage(QStringLiteral("original.jpg")), test::jpegClaiming(16, 16));
        writeFile(inPackage(QStringLiteral("renders/final.mov")), QByteArray(1 << 20, 'm'));
        writeFile(inPackage(QStringLiteral(".hidden")), "hidden");
        QDir().mkpath(inPackage(QStringLiteral("empty")));
        QFile::link(QStringLiteral("notes.txt"), inPackage(QStringLiteral("notes-link")));
    }

    // Saves a copy of the package in a child process that ends at the given step of the
    // commit, as a crash there would: no destructor runs, nothing is cleaned up.
    void saveAndDieAt(const MorphDocument& document, CommitStep step, bool refuseExchange)
    {
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            CommitHooks hooks;
            hooks.beforeStep = [step](CommitStep now) {
                if (now == step)
                    ::_exit(0);
            };
            if (refuseExchange)
                hooks.exchange = [](const std::string&, const std::string&) { return EINVAL; };
            ::_exit(DocumentPackage::write(document, package(), nullptr, hooks) ? 0 : 1);
        }
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }

    void makeOlder(const QStringList& names, std::chrono::seconds age)
    {
        const auto then = std::chrono::system_clock::now() - age;
        const timespec times[2] = {{std::chrono::system_clock::to_time_t(then), 0}, {std::chrono::system_clock::to_time_t(then), 0}};
        for (const QString& name : names)
            ::utimensat(AT_FDCWD, local(path(".") + QLatin1Char('/') + name).c_str(), times, AT_SYMLINK_NOFOLLOW);
    }
};

TEST_F(PackageHostile, ImagesThatDidNotLoadAndForeignFilesSurviveAnEditAndASave)
{
    const struct {
        const char* what;
        std::string recorded; // the first image's path as info.plist holds it
        QByteArray bytes;     // what the file holds; none for a file that is not there
    } cases[] = {
        {"too many pixels", "Image_0.jpg", test::jpegClaiming(17000, 17000)},
        {"a format not read", "Image_0.heic", QByteArray("\0\0\0\x18" "ftypheic\0\0\0\0mif1heic", 24)},
        {"in a folder of its own", "originals/first.jp2", QByteArray("\0\0\0\x0cjP  \r\n\x87\n", 12)},
        {"missing", "Image_0.png", QByteArray()},
        {"on a disk that is not mounted", "/media/plyra-test-absent/photo.jpg", QByteArray()},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        QDir(package()).removeRecursively();
        makeUsersPackage(c.recorded);
        const QString recorded = QString::fromStdString(c.recorded);
        if (!c.bytes.isEmpty())
            writeFile(inPackage(recorded), c.bytes);
        const std::map<QString, QByteArray> before = treeOf(package());
        const ino_t movie = inodeOf(inPackage(QStringLiteral("renders/final.mov")));

        MorphDocument document;
        ASSERT_TRUE(document.readFromFile(package()));
        EXPECT_FALSE(document.imageInTrack(0));
        EXPECT_TRUE(document.imageFailureInTrack(0));
        document.addMorphLine(makeLine({0.2f, 0.6f}, {0.7f, 0.9f}));
        QString error;
        ASSERT_TRUE(document.writeToFile(package(), &error)) << error.toStdString();

        std::map<QString, QByteArray> after = treeOf(package());
        after.erase(QStringLiteral("info.plist"));
        after.erase(QStringLiteral("Image_1.tiff")); // the readable image, saved in its own form
        std::map<QString, QByteArray> expected = before;
        expected.erase(QStringLiteral("info.plist"));
        expected.erase(QStringLiteral("Image_1.png"));
        EXPECT_EQ(after, expected);
        EXPECT_EQ(inodeOf(inPackage(QStringLiteral("renders/final.mov"))), movie); // linked, not copied
        const PropertyList::Dictionary info = infoOf(package());
        EXPECT_EQ(info.at("firstImagePath"), PropertyList(c.recorded));
        EXPECT_EQ(info.at("comment"), PropertyList("kept"));
        EXPECT_EQ(info.at("laterVersionKey"), PropertyList(kLaterVersionValue));
        EXPECT_EQ(besides(package()), QStringList());

        // Saved elsewhere, the document takes its image along; the user's other files
        // stay with the folder they were put in.
        const QString copy = path("copy.plyra");
        QDir(copy).removeRecursively();
        ASSERT_TRUE(document.writeToFile(copy, &error)) << error.toStdString();
        EXPECT_EQ(infoOf(copy).at("firstImagePath"), PropertyList(c.recorded));
        EXPECT_EQ(bytesOf(copy + QLatin1Char('/') + recorded), c.recorded.front() == '/' ? QByteArray() : c.bytes);
        EXPECT_FALSE(QFileInfo::exists(copy + QStringLiteral("/notes.txt")));
        MorphDocument reread;
        ASSERT_TRUE(reread.readFromFile(copy));
        EXPECT_EQ(reread.morphLines().size(), 2u);
    }
}

TEST_F(PackageHostile, ACrashAtAnyStepOfACommitLeavesAReadablePackageAndItsLeftoversGo)
{
    makeUsersPackage("Image_1.png");
    const struct {
        CommitStep step;
        bool refuseExchange;
    } cases[] = {
        {CommitStep::SyncStaged, false}, {CommitStep::SyncParentBefore, false}, {CommitStep::Exchange, false},
        {CommitStep::SyncParentAfter, false}, {CommitStep::RemovePrevious, false},
        // Where the file system refuses the exchange: the older order of two renames.
        {CommitStep::Exchange, true}, {CommitStep::MovePreviousAside, true}, {CommitStep::MoveInAfterAside, true},
        {CommitStep::SyncParentAfter, true}, {CommitStep::RemovePrevious, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "step " << int(c.step) << (c.refuseExchange ? " without exchange" : ""));
        MorphDocument document;
        ASSERT_TRUE(document.readFromFile(package()));
        const std::size_t lines = document.morphLines().size();
        document.addMorphLine(makeLine({0.3f, 0.1f}, {0.3f, 0.9f}));
        saveAndDieAt(document, c.step, c.refuseExchange);

        // The exchange leaves the old or the new package at the name at every moment;
        // two renames leave a moment with nothing there, which the next open repairs.
        const bool gap = c.refuseExchange && c.step == CommitStep::MoveInAfterAside;
        EXPECT_NE(QFileInfo(package()).isDir(), gap);
        // Leftovers of this very process are never touched; older ones are.
        EXPECT_EQ(StagedDirectory::removeLeftovers(package()), 0);
        makeOlder(besides(package()), 1h);
        MorphDocument reread;
        ASSERT_TRUE(reread.readFromFile(package()));
        EXPECT_EQ(besides(package()), QStringList());
        EXPECT_TRUE(reread.morphLines().size() == lines || reread.morphLines().size() == lines + 1);
        EXPECT_EQ(bytesOf(inPackage(QStringLiteral("notes.txt"))), QByteArray("my notes\n"));
        // The next save goes through.
        ASSERT_TRUE(reread.writeToFile(package()));
    }
}

} // namespace
} // namespace plyra
