// SPDX-License-Identifier: MIT
// Recovery copies: written on the writer's thread within the delay of a change, current
// after every burst of edits, gone when the document is saved or undone to its saved
// state, kept when a process ends without a word, and opened again as the edited
// document they were made of.
#include "model/morph_document.h"
#include "platform/plist/xml_plist.h"
#include "platform/qt/timer.h"
#include "platform/qt/user_defaults.h"
#include "platform/run_loop.h"
#include "recovery/autosave.h"
#include "recovery/recovered_document.h"
#include "recovery/recovery_store.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace plyra {
namespace {

MorphLine::Ptr lineFrom(Point start, Point end)
{
    MorphLine::Ptr line = MorphLine::create();
    for (unsigned track : {0u, 1u}) {
        line->setStartPoint(start, track, nullptr);
        line->setEndPoint(end, track, nullptr);
    }
    return line;
}

ino_t inodeOf(const QString& path)
{
    struct stat info {};
    return ::stat(QFile::encodeName(path).constData(), &info) == 0 ? info.st_ino : 0;
}

class AutosaveTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        UserDefaults::standard().useFile(path("defaults.ini"));
        QImage image(64, 48, QImage::Format_RGB32);
        image.fill(Qt::darkMagenta);
        ASSERT_TRUE(image.save(path("photo.png")));
        endPass();
    }
    void TearDown() override { endPass(); }

    QString path(const char* name) const { return m_dir.filePath(QLatin1String(name)); }
    static void endPass() { RunLoop::main().runUntilIdle(); }
    // The delay passes; what was written is on disk.
    void letDelayPass(Autosave& autosave)
    {
        m_clock.advance(static_cast<int>(autosave.delay().count()));
        autosave.writer().waitUntilIdle();
    }

    // A document edited and left by a process that ends without cleaning up, as kill -9
    // would: its copy stays in the store.
    void editAndDie(const QString& package, const QString& displayName)
    {
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            MorphDocument document;
            if (!package.isEmpty())
                document.readFromFile(package);
            else
                document.setImageFromURL(path("photo.png"), 0);
            Autosave autosave(m_store);
            autosave.watch(document, [&] { return Autosave::Description{package, displayName}; });
            document.addMorphLine(lineFrom({0.3f, 0.3f}, {0.9f, 0.2f}));
            RunLoop::main().runUntilIdle();
            m_clock.advance(static_cast<int>(autosave.delay().count()));
            autosave.writer().waitUntilIdle();
            ::_exit(0);
        }
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }

    QTemporaryDir m_dir;
    ManualClock m_clock;
    RecoveryStore m_store{m_dir.filePath(QStringLiteral("state/Plyra/recovery"))};
};

TEST_F(AutosaveTest, ACopyFollowsUnsavedChangesAndGoesWithTheSave)
{
    Autosave autosave(m_store);
    EXPECT_LE(autosave.delay(), std::chrono::seconds(30));
    MorphDocument document;
    document.setImageFromURL(path("photo.png"), 0);
    endPass();
    document.markSaved();
    autosave.watch(document, [] { return Autosave::Description{QString(), QStringLiteral("Untitled")}; });
    endPass();
    EXPECT_FALSE(autosave.isWriteScheduled(document)); // nothing unsaved

    document.addMorphLine(lineFrom({0.1f, 0.1f}, {0.5f, 0.5f}));
    endPass();
    ASSERT_TRUE(autosave.isWriteScheduled(document));
    m_clock.advance(static_cast<int>(autosave.delay().count()) - 1);
    EXPECT_TRUE(autosave.copyFolder(document).isEmpty());
    letDelayPass(autosave);
    const QString folder = autosave.copyFolder(document);
    const std::optional<RecoveryCopy> copy = RecoveryCopy::read(folder);
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->owner, ProcessIdentity::current());
    EXPECT_EQ(copy->displayName, QStringLiteral("Untitled"));
    EXPECT_TRUE(m_store.orphanedCopies().empty()); // this process still keeps it
    // The image is linked into the copy, not read and written again.
    const QString image = QDir(copy->packagePath()).filePath(QStringLiteral("Image_0_original.png"));
    EXPECT_EQ(inodeOf(image), inodeOf(path("photo.png")));

    // A burst of edits, with and without undo, is one write.
    document.addMorphLine(lineFrom({0.2f, 0.1f}, {0.6f, 0.5f}));
    endPass();
    document.setCodecQuality(100);
    endPass();
    letDelayPass(autosave);
    EXPECT_EQ(autosave.writer().writtenCount(), 2);
    MorphDocument reread;
    ASSERT_TRUE(reread.readFromFile(copy->packagePath()));
    EXPECT_EQ(reread.morphLines().size(), 2u);
    EXPECT_EQ(reread.codecQuality(), 100);

    ASSERT_TRUE(document.writeToFile(path("saved.plyra")));
    endPass();
    EXPECT_FALSE(QFileInfo::exists(folder));
    EXPECT_TRUE(autosave.copyFolder(document).isEmpty());
    EXPECT_FALSE(autosave.isWriteScheduled(document));

    // Undone to what was saved: the copy of the undone edit goes too.
    document.addMorphLine(lineFrom({0.4f, 0.1f}, {0.6f, 0.9f}));
    endPass();
    letDelayPass(autosave);
    const QString second = autosave.copyFolder(document);
    ASSERT_TRUE(QFileInfo::exists(second));
    document.undoManager().undo();
    endPass();
    EXPECT_FALSE(QFileInfo::exists(second));
    autosave.unwatch(document, false);
}

TEST_F(AutosaveTest, ClosingOnPurposeRemovesTheCopyAndEndingKeepsIt)
{
    Autosave autosave(m_store);
    MorphDocument kept;
    MorphDocument dropped;
    for (MorphDocument* document : {&kept, &dropped}) {
        autosave.watch(*document, [] { return Autosave::Description{QString(), QStringLiteral("Untitled")}; });
        document->addMorphLine(lineFrom({0.1f, 0.1f}, {0.5f, 0.5f}));
        endPass();
    }
    // Told to end: written at once, no delay waited for.
    autosave.writeAllNow();
    const QString keptFolder = autosave.copyFolder(kept);
    const QString droppedFolder = autosave.copyFolder(dropped);
    ASSERT_TRUE(RecoveryCopy::read(keptFolder));
    ASSERT_TRUE(RecoveryCopy::read(droppedFolder));
    autosave.unwatch(dropped, true);
    autosave.unwatch(kept, false);
    EXPECT_FALSE(QFileInfo::exists(droppedFolder));
    EXPECT_TRUE(QFileInfo::exists(keptFolder + QStringLiteral("/copy.plyra/info.plist")));
}

TEST_F(AutosaveTest, ACopyLeftByAKilledProcessComesBackAsTheEditedDocument)
{
    // A package with a line and a key of a later version, edited, then the process is
    // killed: its copy stays for the next start.
    MorphDocument original;
    original.setImageFromURL(path("photo.png"), 0);
    original.addMorphLine(lineFrom({0.1f, 0.1f}, {0.5f, 0.5f}));
    original.setForeignPackageInfo({{"laterVersionKey", PropertyList("kept")}});
    ASSERT_TRUE(original.writeToFile(path("doc.plyra")));
    editAndDie(path("doc.plyra"), QStringLiteral("doc"));
    editAndDie(QString(), QStringLiteral("Untitled 2"));

    std::vector<RecoveryCopy> left = m_store.orphanedCopies();
    ASSERT_EQ(left.size(), 2u);
    EXPECT_EQ(left[0].documentPath, path("doc.plyra")); // the oldest first
    EXPECT_EQ(left[1].displayName, QStringLiteral("Untitled 2"));
    ASSERT_TRUE(m_store.claim(left[0]));
    EXPECT_EQ(m_store.orphanedCopies().size(), 1u); // this process keeps the claimed one

    QString error;
    std::unique_ptr<MorphDocument> recovered = RecoveredDocument::open(left[0], &error);
    ASSERT_TRUE(recovered) << error.toStdString();
    EXPECT_TRUE(recovered->isEdited());
    EXPECT_EQ(recovered->fileLocation(), path("doc.plyra"));
    EXPECT_EQ(recovered->morphLines().size(), 2u);
    EXPECT_EQ(recovered->imageURLInTrack(0), path("doc.plyra/Image_0.tiff")); // the original again
    ASSERT_TRUE(recovered->imageInTrack(0));
    std::unique_ptr<MorphDocument> untitled = RecoveredDocument::open(left[1], &error);
    ASSERT_TRUE(untitled) << error.toStdString();
    EXPECT_TRUE(untitled->fileLocation().isEmpty());
    EXPECT_EQ(untitled->imageURLInTrack(0), path("photo.png"));
    EXPECT_TRUE(untitled->imageURLInTrack(1).isEmpty()); // as it was: no last image

    // Saved to the original place, the copy it was recovered from goes; the recovered
    // line and the later version's key are in the package.
    Autosave autosave(m_store);
    autosave.watch(*recovered, [this] { return Autosave::Description{path("doc.plyra"), QStringLiteral("doc")}; });
    autosave.useCopy(*recovered, left[0]);
    endPass();
    EXPECT_FALSE(autosave.isWriteScheduled(*recovered)); // the copy is current
    ASSERT_TRUE(recovered->writeToFile(path("doc.plyra")));
    endPass();
    EXPECT_FALSE(QFileInfo::exists(left[0].folder));
    MorphDocument saved;
    ASSERT_TRUE(saved.readFromFile(path("doc.plyra")));
    EXPECT_EQ(saved.morphLines().size(), 2u);
    EXPECT_EQ(saved.foreignPackageInfo().at("laterVersionKey"), PropertyList("kept"));
    autosave.unwatch(*recovered, false);
}

TEST_F(AutosaveTest, FoldersWithoutAWholeCopyOfEndedProcessesGoAndTheRestStay)
{
    editAndDie(QString(), QStringLiteral("Untitled"));
    const QDir store(m_store.folder());
    // A process that died before its first copy was whole, and one that still runs.
    const std::optional<ProcessIdentity> ended = [] {
        const pid_t child = ::fork();
        if (child == 0)
            ::_exit(0);
        ProcessIdentity identity{child, 1};
        ::waitpid(child, nullptr, 0);
        return std::optional(identity);
    }();
    const QString dead = store.filePath(QString::fromStdString(ended->token()) + QStringLiteral("-1"));
    const QString running = store.filePath(QString::fromStdString(ProcessIdentity::current().token()) + QStringLiteral("-9"));
    QDir().mkpath(dead + QStringLiteral("/copy.plyra"));
    QDir().mkpath(running + QStringLiteral("/copy.plyra"));
    EXPECT_EQ(m_store.removeIncompleteCopies(), 1);
    EXPECT_FALSE(QFileInfo::exists(dead));
    EXPECT_TRUE(QFileInfo::exists(running));
    EXPECT_EQ(m_store.orphanedCopies().size(), 1u);
}

} // namespace
} // namespace plyra
