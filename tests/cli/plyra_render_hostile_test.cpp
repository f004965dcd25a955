// SPDX-License-Identifier: MIT
// plyra-render against hostile files and paths, one table per kind: what it is given to
// read, where it is asked to write, full and read-only disks, and signals. Every case is
// built in a scratch folder and checked for its exit status, a message that names the
// path and the reason, a run of a few seconds even for blocking files, nothing changed
// outside the scratch folder (the system's /dev/null and /dev/zero, the document), and no
// temporary file left. Where the test runs as root, plyra-render runs in a mount namespace
// of its own with a private /tmp (so that leftovers can be seen) and small file systems.
#include "model/morph_document.h"
#include "platform/qt/user_defaults.h"
#include "platform/run_loop.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QDirIterator>
#include <QFile>
#include <QImage>
#include <QProcess>

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <thread>
#include <unistd.h>

namespace plyra {
namespace {

using namespace Qt::StringLiterals;
namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

// Even a run that meets a blocking file, or is interrupted, ends within this.
constexpr auto kFewSeconds = std::chrono::seconds(8);

// Mounts a private /tmp (and, when asked, a full and a read-only file system), records
// plyra-render's process id for the signals, runs it, then lists what it left in /tmp.
constexpr const char* kNamespaceScript = R"(
mount -t tmpfs -o size="$TMP_SIZE" tmpfs /tmp || exit 97
if [ -n "$FULL_DIR" ]; then
    mount -t tmpfs -o size=256k tmpfs "$FULL_DIR" || exit 97
    head -c 1048576 /dev/zero > "$FULL_DIR/filler" 2>/dev/null
fi
if [ -n "$READ_ONLY_DIR" ]; then mount -t tmpfs -o ro tmpfs "$READ_ONLY_DIR" || exit 97; fi
sh -c 'echo $$ > "$0"; exec "$@"' "$PID_FILE" "$@"
status=$?
ls -A /tmp > "$TMP_LIST"
exit $status
)";

struct Probe {
    QStringList arguments{};
    QStringList messages{}; // each must appear in the standard error
    int exitCode = 1;
    QString workingDirectory{};
    int signal = 0;                // sent once the render is under way
    bool needsRoot = false;        // device nodes and mounts
    QString fullDir{};             // mounted as a full file system
    QString readOnlyDir{};         // mounted read-only
    QString tmpSize = u"64m"_s;    // the private /tmp
    std::function<void()> after{}; // checks of the case's own files
};

struct Case {
    const char* name;
    std::function<Probe()> make;
};

struct RunResult {
    int exitCode = -1;
    QByteArray err;
    Clock::duration elapsed{};
    std::optional<QStringList> tmpLeft; // known only in a private /tmp
};

/// What a path is, for "unchanged" checks: type, device number, size, content hash.
QString fingerprint(const QString& path)
{
    struct stat info {};
    if (::lstat(QFile::encodeName(path).constData(), &info) != 0)
        return u"absent"_s;
    QString text = u"%1:%2:%3"_s.arg(info.st_mode & S_IFMT).arg(info.st_rdev).arg(info.st_size);
    if (S_ISREG(info.st_mode) && info.st_size < (1 << 24)) {
        QFile file(path);
        if (file.open(QIODevice::ReadOnly))
            text += u":"_s + QString::fromLatin1(QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha1).toHex());
    }
    return text;
}

QString treeFingerprint(const QString& dir)
{
    QStringList entries;
    QDirIterator it(dir, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        entries << QDir(dir).relativeFilePath(path) + u"="_s + fingerprint(path);
    }
    entries.sort();
    return entries.join(u'\n');
}

class PlyraRenderHostile : public ::testing::Test {
public:
    QString path(const QString& name) const { return m_dir + u'/' + name; }

    static bool isRoot() { return ::geteuid() == 0; }

    // The package the cases read: two 40 × 30 images and a line.
    QString document() const { return path(u"doc.plyra"_s); }

    // A copy of the document whose entry `name` the caller replaces with something hostile.
    QString damagedCopy(const QString& copyName, const QString& entry)
    {
        const QString copy = path(copyName);
        fs::copy(document().toStdString(), copy.toStdString(), fs::copy_options::recursive);
        fs::remove(QString(copy + u'/' + entry).toStdString());
        return copy;
    }

protected:
    void SetUp() override
    {
        // Not under /tmp: a private /tmp is mounted over it while plyra-render runs.
        m_dir = QStringLiteral(PLYRA_BINARY_DIR "/test-output/hostile-cli-")
            + QString::fromLatin1(::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(m_dir.toStdString());
        ASSERT_TRUE(QDir().mkpath(m_dir));
        UserDefaults::standard().useFile(path(u"defaults.ini"_s));
        makeDocument();
        // A build under /tmp (a clone there) would disappear under the private /tmp.
        const bool buildUnderTmp = QFileInfo(QStringLiteral(PLYRA_BINARY_DIR)).canonicalFilePath().startsWith(u"/tmp/"_s);
        m_private = isRoot() && !buildUnderTmp && QProcess::execute(u"unshare"_s, {u"--mount"_s, u"true"_s}) == 0;
        if (!m_private)
            std::printf("[  NOTE    ] no private /tmp (needs root, mount namespaces and a build outside /tmp): leftovers are not checked\n");
    }

    void TearDown() override { fs::remove_all(m_dir.toStdString()); }

    void makeDocument()
    {
        MorphDocument doc;
        for (unsigned track = 0; track < 2; ++track) {
            QImage image(40, 30, QImage::Format_RGBA8888);
            image.fill(track == 0 ? Qt::red : Qt::blue);
            const QString file = path(u"image%1.png"_s.arg(track));
            ASSERT_TRUE(image.save(file));
            doc.setImageFromURL(file, track);
        }
        auto line = MorphLine::create();
        for (unsigned track : {0u, 1u}) {
            line->setStartPoint({0.2f, 0.2f}, track, nullptr);
            line->setEndPoint({0.7f, 0.6f}, track, nullptr);
        }
        doc.addMorphLine(line);
        QString error;
        ASSERT_TRUE(doc.writeToFile(document(), &error)) << error.toStdString();
        RunLoop::main().runUntilIdle();
    }

    RunResult run(const Probe& probe)
    {
        QProcess process;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(u"PLYRA_DEFAULTS_FILE"_s, path(u"defaults.ini"_s));
        const QString pidFile = path(u".pid"_s);
        const QString tmpList = path(u".tmp-list"_s);
        QFile::remove(pidFile);
        QFile::remove(tmpList);
        env.insert(u"PID_FILE"_s, pidFile);
        env.insert(u"TMP_LIST"_s, tmpList);
        env.insert(u"TMP_SIZE"_s, probe.tmpSize);
        env.insert(u"FULL_DIR"_s, probe.fullDir);
        env.insert(u"READ_ONLY_DIR"_s, probe.readOnlyDir);
        process.setProcessEnvironment(env);
        process.setWorkingDirectory(probe.workingDirectory.isEmpty() ? m_dir : probe.workingDirectory);
        const QString exe = QStringLiteral(PLYRA_RENDER_EXE);
        const Clock::time_point start = Clock::now();
        if (m_private)
            process.start(u"unshare"_s, QStringList{u"--mount"_s, u"--propagation"_s, u"private"_s, u"sh"_s, u"-c"_s,
                                                    QString::fromLatin1(kNamespaceScript), u"sh"_s, exe} + probe.arguments);
        else
            process.start(exe, probe.arguments);
        EXPECT_TRUE(process.waitForStarted());
        if (probe.signal)
            sendSignal(process, pidFile, probe.signal);
        if (!process.waitForFinished(std::chrono::duration_cast<std::chrono::milliseconds>(kFewSeconds * 3).count()))
            process.kill();
        RunResult result{process.exitCode(), process.readAllStandardError(), Clock::now() - start, std::nullopt};
        QFile list(tmpList);
        if (m_private && list.open(QIODevice::ReadOnly))
            result.tmpLeft = QString::fromUtf8(list.readAll()).split(u'\n', Qt::SkipEmptyParts);
        return result;
    }

    // Whether the main thread of the process has the signal blocked ("SigBlk" in its status).
    static bool blocksSignal(pid_t pid, int signal)
    {
        QFile status(u"/proc/%1/status"_s.arg(pid));
        if (!status.open(QIODevice::ReadOnly))
            return false;
        for (const QByteArray& line : status.readAll().split('\n'))
            if (line.startsWith("SigBlk:"))
                return (line.mid(7).trimmed().toULongLong(nullptr, 16) >> (signal - 1)) & 1u;
        return false;
    }

    // Once plyra-render has been running for a while (its temporary movie made), signal it.
    void sendSignal(QProcess& process, const QString& pidFile, int signal) const
    {
        pid_t pid = static_cast<pid_t>(process.processId());
        const Clock::time_point deadline = Clock::now() + std::chrono::seconds(5);
        while (m_private && Clock::now() < deadline) {
            QFile file(pidFile);
            if (file.open(QIODevice::ReadOnly) && (pid = file.readAll().trimmed().toInt()) > 0)
                break;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        // On a busy machine loading the libraries can take longer than the wait below: the
        // signal is sent only once the program has taken the termination signals over.
        const Clock::time_point started = Clock::now() + std::chrono::seconds(10);
        while (!blocksSignal(pid, signal) && Clock::now() < started)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        std::this_thread::sleep_for(std::chrono::milliseconds(700));
        ASSERT_EQ(::kill(pid, signal), 0);
    }

    void runCases(const std::vector<Case>& cases)
    {
        const QString system = fingerprint(u"/dev/null"_s) + fingerprint(u"/dev/zero"_s);
        for (const Case& c : cases) {
            SCOPED_TRACE(c.name);
            const Probe probe = c.make();
            if (probe.needsRoot && !m_private) {
                std::printf("[  SKIPPED ] %s: needs root and a mount namespace\n", c.name);
                continue;
            }
            const QString before = treeFingerprint(document());
            const RunResult result = run(probe);
            EXPECT_EQ(result.exitCode, probe.exitCode) << result.err.toStdString();
            for (const QString& message : probe.messages)
                EXPECT_TRUE(QString::fromUtf8(result.err).contains(message))
                    << "missing: " << message.toStdString() << "\nin: " << result.err.toStdString();
            EXPECT_LT(result.elapsed, kFewSeconds);
            if (result.tmpLeft) {
                EXPECT_TRUE(result.tmpLeft->isEmpty()) << result.tmpLeft->join(u' ').toStdString();
            }
            EXPECT_EQ(fingerprint(u"/dev/null"_s) + fingerprint(u"/dev/zero"_s), system);
            EXPECT_EQ(treeFingerprint(document()), before);
            MorphDocument reopened;
            EXPECT_TRUE(reopened.readFromFile(document()));
            EXPECT_EQ(reopened.morphLines().size(), 1u);
            RunLoop::main().runUntilIdle();
            if (probe.after)
                probe.after();
        }
    }

    QString m_dir;
    bool m_private = false;
};

// The exact message plyra-render gives, with the path as it was given.
QString cannotWrite(const QString& path)
{
    return u"cannot write '"_s + path + u"': "_s;
}

TEST_F(PlyraRenderHostile, OutputNeverReplacesWhatItMustNot)
{
    const QString doc = document();
    const std::vector<Case> cases{
        {"warp field onto a device node", [&] {
             const QString node = path(u"node"_s);
             const bool made = isRoot() && ::mknod(QFile::encodeName(node).constData(), S_IFCHR | 0666, makedev(1, 3)) == 0;
             return Probe{.arguments = {doc, u"--warp-field"_s, node},
                          .messages = {cannotWrite(node), u"character device"_s},
                          .needsRoot = true,
                          .after = [node, made] {
                              struct stat info {};
                              EXPECT_TRUE(!made || (::lstat(QFile::encodeName(node).constData(), &info) == 0 && S_ISCHR(info.st_mode)));
                          }};
         }},
        {"frame onto a link to /dev/null", [&] {
             const QString link = path(u"null.jpg"_s);
             QFile::link(u"/dev/null"_s, link);
             return Probe{.arguments = {doc, u"-o"_s, link},
                          .messages = {cannotWrite(link), u"symbolic link to '/dev/null'"_s},
                          .after = [link] { EXPECT_EQ(QFile::symLinkTarget(link), u"/dev/null"_s); }};
         }},
        {"warp field onto a FIFO", [&] {
             const QString fifo = path(u"fifo"_s);
             ::mkfifo(QFile::encodeName(fifo).constData(), 0644);
             return Probe{.arguments = {doc, u"--warp-field"_s, fifo},
                          .messages = {cannotWrite(fifo), u"FIFO"_s},
                          .after = [fifo] { EXPECT_TRUE(fs::is_fifo(fifo.toStdString())); }};
         }},
        {"movie onto a folder", [&] {
             const QString folder = path(u"folder.mov"_s);
             QDir().mkpath(folder);
             return Probe{.arguments = {doc, u"-o"_s, folder, u"--frames"_s, u"3"_s},
                          .messages = {cannotWrite(folder), u"it is a folder"_s}};
         }},
        {"warp field over the document's info.plist", [&] {
             const QString target = doc + u"/info.plist"_s;
             return Probe{.arguments = {doc, u"--warp-field"_s, target},
                          .messages = {cannotWrite(target), u"the document being read"_s}};
         }},
        {"frame into the package", [&] {
             const QString target = doc + u"/Image_0.jpg"_s;
             return Probe{.arguments = {doc, u"-o"_s, target}, .messages = {cannotWrite(target), u"the document being read"_s}};
         }},
        {"movie into the package through ..", [&] {
             const QString target = doc + u"/../doc.plyra/m.mov"_s;
             return Probe{.arguments = {doc, u"-o"_s, target, u"--frames"_s, u"2"_s},
                          .messages = {cannotWrite(target), u"the document being read"_s}};
         }},
        {"default frame name inside the package", [&] {
             return Probe{.arguments = {u"."_s},
                          .messages = {cannotWrite(u"doc.jpg"_s), u"the document being read"_s},
                          .workingDirectory = doc};
         }},
        {"frame over an image the document reads", [&] {
             // A document whose first image is a JPEG outside its package.
             const QString photo = path(u"photo.jpg"_s);
             QImage image(40, 30, QImage::Format_RGB32);
             image.fill(Qt::green);
             image.save(photo);
             MorphDocument other;
             other.setImageFromURL(photo, 0);
             other.writeToFile(path(u"photo.plyra"_s));
             QFile info(path(u"photo.plyra/info.plist"_s));
             info.open(QIODevice::ReadOnly);
             QByteArray text = info.readAll().replace("Image_0.tiff", QFile::encodeName(photo));
             info.close();
             info.open(QIODevice::WriteOnly | QIODevice::Truncate);
             info.write(text);
             info.close();
             const QString before = fingerprint(photo);
             return Probe{.arguments = {path(u"photo.plyra"_s), u"-o"_s, photo},
                          .messages = {cannotWrite(photo), u"a file the document reads"_s},
                          .after = [photo, before] { EXPECT_EQ(fingerprint(photo), before); }};
         }},
        {"frame into a missing folder", [&] {
             const QString target = path(u"no/such/f.jpg"_s);
             return Probe{.arguments = {doc, u"-o"_s, target}, .messages = {cannotWrite(target), u"does not exist"_s}};
         }},
    };
    runCases(cases);
}

TEST_F(PlyraRenderHostile, InputsThatAreNotRegularFilesOrTooLargeAreRefusedAtOnce)
{
    auto infoCase = [this](const char* copyName, std::function<void(const QString&)> make, const char* reason) {
        const QString copy = damagedCopy(QString::fromLatin1(copyName), u"info.plist"_s);
        make(copy + u"/info.plist"_s);
        return Probe{.arguments = {copy, u"-o"_s, path(u"out.jpg"_s)},
                     .messages = {u"cannot open document '"_s + copy + u"'"_s, QString::fromUtf8(reason)}};
    };
    auto imageCase = [this](const char* copyName, std::function<void(const QString&)> make, const char* reason) {
        const QString copy = damagedCopy(QString::fromLatin1(copyName), u"Image_0.tiff"_s);
        const QString image = copy + u"/Image_0.tiff"_s;
        make(image);
        return Probe{.arguments = {copy, u"-o"_s, path(u"out.jpg"_s)},
                     .messages = {u"cannot read the first image '"_s + image + u"': "_s, QString::fromUtf8(reason)}};
    };
    const auto fifo = [](const QString& p) { ::mkfifo(QFile::encodeName(p).constData(), 0644); };
    const auto zero = [](const QString& p) { QFile::link(u"/dev/zero"_s, p); };
    const auto sparse = [](const char* head) {
        return [head](const QString& p) {
            QFile file(p);
            file.open(QIODevice::WriteOnly);
            file.write(head);
            file.resize(qint64{30} << 30);
        };
    };
    const auto pdfPage = [](int size) {
        return [size](const QString& p) {
            QFile file(p);
            file.open(QIODevice::WriteOnly);
            const QByteArray box = QByteArray::number(size);
            const QByteArray objects[3] = {"<< /Type /Catalog /Pages 2 0 R >>", "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
                                           "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 " + box + " " + box + "] >>"};
            QByteArray pdf = "%PDF-1.4\n";
            QByteArray xref = "xref\n0 4\n0000000000 65535 f \n";
            for (int i = 0; i < 3; ++i) {
                xref += QByteArray::number(pdf.size()).rightJustified(10, '0') + " 00000 n \n";
                pdf += QByteArray::number(i + 1) + " 0 obj\n" + objects[i] + "\nendobj\n";
            }
            const QByteArray start = QByteArray::number(pdf.size());
            file.write(pdf + xref + "trailer\n<< /Size 4 /Root 1 0 R >>\nstartxref\n" + start + "\n%%EOF\n");
        };
    };
    const std::vector<Case> cases{
        {"info.plist as a FIFO", [&] { return infoCase("fifo.plyra", fifo, "it is a FIFO (named pipe), not a regular file"); }},
        {"info.plist as a link to /dev/zero", [&] { return infoCase("zero.plyra", zero, "character device"); }},
        {"info.plist as a link to a silent /dev/stdin", [&] {
             return infoCase("stdin.plyra", [](const QString& p) { QFile::link(u"/dev/stdin"_s, p); }, "not a regular file");
         }},
        {"info.plist of 30 GB", [&] { return infoCase("sparse.plyra", sparse("<?xml"), "too large (30.0 GB"); }},
        {"image as a FIFO", [&] { return imageCase("ififo.plyra", fifo, "FIFO"); }},
        {"image as a link to /dev/zero", [&] { return imageCase("izero.plyra", zero, "character device"); }},
        {"image as a folder", [&] { return imageCase("idir.plyra", [](const QString& p) { QDir().mkdir(p); }, "folder"); }},
        {"image empty", [&] { return imageCase("iempty.plyra", [](const QString& p) { QFile(p).open(QIODevice::WriteOnly); }, "empty"); }},
        {"image not an image", [&] {
             return imageCase("itext.plyra", [](const QString& p) {
                 QFile file(p);
                 file.open(QIODevice::WriteOnly);
                 file.write("no picture here");
             }, "not an image");
         }},
        {"PDF of 30 GB", [&] { return imageCase("ipdf.plyra", sparse("%PDF-1.4\n"), "too large (30.0 GB"); }},
        {"PDF page of 23000 points", [&] { return imageCase("ip23.plyra", pdfPage(23000), "23000 × 23000 pixels"); }},
        {"PDF page of 100000 points", [&] { return imageCase("ip100.plyra", pdfPage(100000), "100000 × 100000 pixels"); }},
        {"a document that is a FIFO", [&] {
             const QString fifoDoc = path(u"pipe.plyra"_s);
             ::mkfifo(QFile::encodeName(fifoDoc).constData(), 0644);
             return Probe{.arguments = {fifoDoc, u"--info"_s},
                          .messages = {u"cannot open document '"_s + fifoDoc + u"'"_s, u"not a document package"_s}};
         }},
        {"time beyond the float range", [&] {
             return Probe{.arguments = {document(), u"--time"_s, u"1e40"_s}, .messages = {u"--time needs a number"_s}, .exitCode = 2};
         }},
    };
    runCases(cases);
}

TEST_F(PlyraRenderHostile, FailuresAreFoundBeforeTheFirstFrameOrAtTheFirstFailedWrite)
{
    const QString doc = document();
    const std::vector<Case> cases{
        {"a size H.264 cannot encode", [&] {
             const QString movie = path(u"huge.mov"_s);
             return Probe{.arguments = {doc, u"-o"_s, movie, u"--frames"_s, u"50"_s, u"--size"_s, u"16384x16384"_s, u"--codec"_s, u"avc1"_s},
                          .messages = {u"\"avc1\" cannot compress frames of 16384 x 16384"_s},
                          .after = [movie] { EXPECT_FALSE(QFile::exists(movie)); }};
         }},
        {"a read-only output folder", [&] {
             const QString folder = path(u"readonly"_s);
             QDir().mkpath(folder);
             const QString movie = folder + u"/m.mov"_s;
             return Probe{.arguments = {doc, u"-o"_s, movie, u"--frames"_s, u"50"_s},
                          .messages = {cannotWrite(movie), u"Read-only file system"_s},
                          .needsRoot = true,
                          .readOnlyDir = folder};
         }},
        {"a frame onto a full disk", [&] {
             const QString folder = path(u"full"_s);
             QDir().mkpath(folder);
             const QString frame = folder + u"/f.jpg"_s;
             return Probe{.arguments = {doc, u"-o"_s, frame, u"--size"_s, u"640x480"_s},
                          .messages = {cannotWrite(frame), u"No space left on device"_s},
                          .needsRoot = true,
                          .fullDir = folder};
         }},
        {"a temporary movie on a full disk", [&] {
             const QString movie = path(u"m.mov"_s);
             // Frames of 320 × 240 in Animation take a few kilobytes: the third one fails.
             return Probe{.arguments = {doc, u"-o"_s, movie, u"--frames"_s, u"100000"_s, u"--size"_s, u"320x240"_s, u"--codec"_s, u"rle "_s},
                          .messages = {cannotWrite(movie), u"No space left on device"_s, u"/tmp/Plyra_"_s},
                          .needsRoot = true,
                          .tmpSize = u"8k"_s,
                          .after = [movie] { EXPECT_FALSE(QFile::exists(movie)); }};
         }},
    };
    runCases(cases);
}

TEST_F(PlyraRenderHostile, SignalsEndAMoviePromptlyWithoutLeftovers)
{
    const QString movie = path(u"long.mov"_s);
    std::vector<Case> cases;
    for (const auto& [name, signal] : {std::pair{"SIGINT", SIGINT}, std::pair{"SIGTERM", SIGTERM}, std::pair{"SIGHUP", SIGHUP}})
        cases.push_back({name, [&, signal] {
                             return Probe{.arguments = {document(), u"-o"_s, movie, u"--frames"_s, u"1000000"_s, u"--size"_s, u"64x48"_s},
                                          .messages = {u"interrupted; nothing was written"_s},
                                          .exitCode = 130,
                                          .signal = signal,
                                          .after = [movie] { EXPECT_FALSE(QFile::exists(movie)); }};
                         }});
    runCases(cases);
}

} // namespace
} // namespace plyra
