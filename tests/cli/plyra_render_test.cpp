// SPDX-License-Identifier: MIT
#include "model/morph_document.h"
#include "platform/movie/movie.h"
#include "platform/qt/user_defaults.h"
#include "platform/run_loop.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstring>

namespace plyra {
namespace {

struct RunResult {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

class PlyraRenderTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        UserDefaults::standard().useFile(dir.filePath(QStringLiteral("defaults.ini")));
    }

    RunResult run(const QStringList& arguments)
    {
        QProcess process;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("PLYRA_DEFAULTS_FILE"), dir.filePath(QStringLiteral("defaults.ini")));
        process.setProcessEnvironment(env);
        process.start(QStringLiteral(PLYRA_RENDER_EXE), arguments);
        EXPECT_TRUE(process.waitForFinished(120000));
        return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
    }

    // A package with two 40 × 30 images (red and blue) and two joined lines.
    QString makeDocument(bool withImages = true)
    {
        MorphDocument document;
        if (withImages) {
            for (int track : {0, 1}) {
                QImage image(40, 30, QImage::Format_RGBA8888);
                image.fill(track == 0 ? Qt::red : Qt::blue);
                const QString path = dir.filePath(QStringLiteral("image%1.png").arg(track));
                EXPECT_TRUE(image.save(path));
                document.setImageFromURL(path, static_cast<unsigned>(track));
            }
        } else {
            document.setFrameSize(QSizeF(40, 30));
        }
        auto a = MorphLine::create();
        auto b = MorphLine::create();
        for (unsigned track : {0u, 1u}) {
            a->setStartPoint({0.2f, 0.2f}, track, nullptr);
            a->setEndPoint({0.5f, 0.5f}, track, nullptr);
            b->setStartPoint({0.5f, 0.5f}, track, nullptr);
            b->setEndPoint({0.8f, 0.3f}, track, nullptr);
        }
        document.addMorphLine(a);
        document.addMorphLine(b);
        const QString package = dir.filePath(withImages ? QStringLiteral("doc.plyra") : QStringLiteral("empty.plyra"));
        QString error;
        EXPECT_TRUE(document.writeToFile(package, &error)) << error.toStdString();
        RunLoop::main().runUntilIdle();
        return package;
    }

    QTemporaryDir dir;
};

TEST_F(PlyraRenderTest, UsageErrorsExitWithTwoAndAOneLineMessage)
{
    const RunResult none = run({});
    EXPECT_EQ(none.exitCode, 2);
    EXPECT_TRUE(none.err.startsWith("plyra-render: no document given\n")) << none.err.toStdString();
    EXPECT_TRUE(none.err.contains("usage:"));

    const RunResult bad = run({QStringLiteral("doc.plyra"), QStringLiteral("--frames")});
    EXPECT_EQ(bad.exitCode, 2);
    EXPECT_TRUE(bad.err.startsWith("plyra-render: --frames needs a value\n"));

    const RunResult help = run({QStringLiteral("--help")});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(help.out.contains("--warp-field"));
}

TEST_F(PlyraRenderTest, UnreadableDocumentsFailWithAClearMessage)
{
    const RunResult missing = run({dir.filePath(QStringLiteral("nothing.plyra")), QStringLiteral("--info")});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_TRUE(missing.err.contains("cannot open document")) << missing.err.toStdString();

    const QString garbage = dir.filePath(QStringLiteral("garbage.plyra"));
    ASSERT_TRUE(QDir().mkpath(garbage));
    QFile info(garbage + QStringLiteral("/info.plist"));
    ASSERT_TRUE(info.open(QIODevice::WriteOnly));
    info.write("\x00\x01garbage<plist", 14);
    info.close();
    const QString out = dir.filePath(QStringLiteral("g.jpg"));
    const RunResult broken = run({garbage, QStringLiteral("-o"), out});
    EXPECT_EQ(broken.exitCode, 1);
    EXPECT_TRUE(broken.err.contains("cannot open document"));
    EXPECT_FALSE(QFile::exists(out));

    const QString empty = makeDocument(false);
    const RunResult noImage = run({empty, QStringLiteral("-o"), out});
    EXPECT_EQ(noImage.exitCode, 1);
    EXPECT_TRUE(noImage.err.contains("no image")) << noImage.err.toStdString();
    EXPECT_FALSE(QFile::exists(out));

    const RunResult unwritable = run({makeDocument(), QStringLiteral("-o"), dir.filePath(QStringLiteral("no/such/dir/f.jpg"))});
    EXPECT_EQ(unwritable.exitCode, 1);
    EXPECT_TRUE(unwritable.err.contains("cannot write"));
}

TEST_F(PlyraRenderTest, InfoPrintsTheDocumentAsJson)
{
    const RunResult result = run({makeDocument(), QStringLiteral("--info")});
    ASSERT_EQ(result.exitCode, 0) << result.err.toStdString();
    const QJsonObject info = QJsonDocument::fromJson(result.out).object();
    EXPECT_EQ(info[QStringLiteral("frameSize")].toArray(), (QJsonArray{40, 30}));
    EXPECT_EQ(info[QStringLiteral("codecFormat")].toString(), QStringLiteral("mp4v"));
    EXPECT_EQ(info[QStringLiteral("codecQuality")].toInt(), 768);
    EXPECT_TRUE(info[QStringLiteral("lineColor")].isNull());
    const QJsonArray images = info[QStringLiteral("images")].toArray();
    ASSERT_EQ(images.size(), 2);
    EXPECT_TRUE(images[0].toObject()[QStringLiteral("loaded")].toBool());
    EXPECT_EQ(images[1].toObject()[QStringLiteral("width")].toInt(), 40);
    EXPECT_NEAR(images[0].toObject()[QStringLiteral("aspectRatio")].toDouble(), 40.0 / 30.0, 1e-6);
    EXPECT_TRUE(images[0].toObject()[QStringLiteral("path")].toString().endsWith(QStringLiteral("Image_0.tiff")));
    const QJsonArray lines = info[QStringLiteral("lines")].toArray();
    ASSERT_EQ(lines.size(), 2);
    const QJsonObject first = lines[0].toObject();
    EXPECT_EQ(first[QStringLiteral("attachedLineAtEnd")].toInt(), 1);
    EXPECT_TRUE(first[QStringLiteral("attachedLineAtStart")].isNull());
    EXPECT_EQ(lines[1].toObject()[QStringLiteral("attachedLineAtStart")].toInt(), 0);
    EXPECT_NEAR(first[QStringLiteral("endPoints")].toArray()[1].toArray()[0].toDouble(), 0.5, 1e-6);
    EXPECT_EQ(first[QStringLiteral("dissolveEndTime")].toDouble(), 1.0);
}

TEST_F(PlyraRenderTest, RendersAFrameAndAMovie)
{
    const QString document = makeDocument();
    const QString frame = dir.filePath(QStringLiteral("f.jpg"));
    const RunResult still = run({document, QStringLiteral("-o"), frame, QStringLiteral("--time"), QStringLiteral("0.25"),
        QStringLiteral("--size"), QStringLiteral("64x48"), QStringLiteral("--quiet")});
    ASSERT_EQ(still.exitCode, 0) << still.err.toStdString();
    EXPECT_EQ(QImageReader(frame).size(), QSize(64, 48));

    const QString movie = dir.filePath(QStringLiteral("m.mov"));
    const RunResult moving = run({document, QStringLiteral("-o"), movie, QStringLiteral("--frames"), QStringLiteral("6"),
        QStringLiteral("--fps"), QStringLiteral("12"), QStringLiteral("--codec"), QStringLiteral("mjpb")});
    ASSERT_EQ(moving.exitCode, 0) << moving.err.toStdString();
    EXPECT_TRUE(moving.out.startsWith("plyra-render: 6 frames in ")) << moving.out.toStdString();
    EXPECT_EQ(moving.out.count('\n'), 1);
    const std::unique_ptr<Movie> saved = Movie::open(movie.toStdString());
    ASSERT_TRUE(saved);
    EXPECT_EQ(saved->frameTimes().size(), 6u);
    EXPECT_EQ(saved->duration().valueIn(600), 300);
}

TEST_F(PlyraRenderTest, WritesTheWarpFieldOfOneFrame)
{
    const QString field = dir.filePath(QStringLiteral("field.bin"));
    const RunResult result = run({makeDocument(), QStringLiteral("--time"), QStringLiteral("0.5"), QStringLiteral("--warp-field"),
        field, QStringLiteral("--interval"), QStringLiteral("7")});
    ASSERT_EQ(result.exitCode, 0) << result.err.toStdString();
    QFile file(field);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    const qsizetype newline = bytes.indexOf('\n');
    ASSERT_GT(newline, 0);
    const QByteArray header = bytes.left(newline);
    // 40 × 30 at interval 7: ceil(40/7)+1 = 7 by ceil(30/7)+1 = 6 nodes.
    EXPECT_TRUE(header.startsWith("plyra-warp-field nx=7 ny=6 d0=")) << header.toStdString();
    EXPECT_TRUE(header.contains(" d1="));
    ASSERT_EQ(bytes.size() - newline - 1, 7 * 6 * 16);
    // The bottom-right node (i = 6, j = 0) lies on the right edge: x = 40 in both images
    // for lines that do not move.
    float node[4];
    std::memcpy(node, bytes.constData() + newline + 1 + 6 * 16, 16);
    EXPECT_NEAR(node[0], 40.0f, 1e-3f);
    EXPECT_NEAR(node[1], 0.0f, 1e-3f);
}

} // namespace
} // namespace plyra
