// SPDX-License-Identifier: MIT
#include "model/document_package.h"
#include "model/morph_document.h"
#include "model/staged_directory.h"

#include "document_test_support.h"
#include "platform/log.h"
#include "platform/plist/xml_plist.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include <tiffio.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace plyra {
namespace {

using test::DocumentTestBase;

// A one-page PDF of width × height points filled with one colour (0, 128, 255).
QByteArray makePdf(int width, int height)
{
    const QByteArray size = QByteArray::number(width) + ' ' + QByteArray::number(height);
    const QByteArray content = "0 0.5 1 rg 0 0 " + size + " re f\n";
    const std::vector<QByteArray> objects = {
        "<< /Type /Catalog /Pages 2 0 R >>",
        "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
        "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 " + size + "] /Contents 4 0 R >>",
        "<< /Length " + QByteArray::number(content.size()) + " >>\nstream\n" + content + "endstream",
    };
    QByteArray pdf = "%PDF-1.4\n";
    std::vector<qsizetype> offsets;
    for (std::size_t i = 0; i < objects.size(); ++i) {
        offsets.push_back(pdf.size());
        pdf += QByteArray::number(static_cast<int>(i + 1)) + " 0 obj\n" + objects[i] + "\nendobj\n";
    }
    const qsizetype xref = pdf.size();
    pdf += "xref\n0 " + QByteArray::number(static_cast<int>(objects.size() + 1)) + "\n0000000000 65535 f \n";
    for (qsizetype offset : offsets)
        pdf += QByteArray::number(offset).rightJustified(10, '0') + " 00000 n \n";
    pdf += "trailer\n<< /Size " + QByteArray::number(static_cast<int>(objects.size() + 1))
        + " /Root 1 0 R >>\nstartxref\n" + QByteArray::number(xref) + "\n%%EOF\n";
    return pdf;
}

QByteArray fileBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(bytes);
}

QStringList entries(const QString& dir)
{
    QStringList names = QDir(dir).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    names.sort();
    return names;
}

void expectSamePixels(const QImage& expected, const QImage& actual)
{
    ASSERT_EQ(expected.size(), actual.size());
    for (int y = 0; y < expected.height(); ++y)
        for (int x = 0; x < expected.width(); ++x)
            ASSERT_EQ(expected.pixel(x, y), actual.pixel(x, y)) << "at " << x << ", " << y;
}

std::uint16_t tiffCompression(const QString& path)
{
    std::uint16_t compression = 0;
    if (TIFF* tiff = TIFFOpen(QFile::encodeName(path).constData(), "r")) {
        TIFFGetField(tiff, TIFFTAG_COMPRESSION, &compression);
        TIFFClose(tiff);
    }
    return compression;
}

class DocumentPackageTest : public DocumentTestBase {
protected:
    QString package(const char* name = "doc.plyra") const { return path(name); }

    /// Reads a package into a new document; null when reading reports failure.
    std::unique_ptr<MorphDocument> reopen(const QString& packagePath, QString* error = nullptr)
    {
        auto document = std::make_unique<MorphDocument>();
        if (!document->readFromFile(packagePath, error))
            return nullptr;
        return document;
    }

    /// Writes an info.plist made of the given entries into a new package directory.
    QString packageWithInfo(const PropertyList& info, const char* name = "hand.plyra") const
    {
        const QString dir = path(name);
        EXPECT_TRUE(QDir().mkpath(dir));
        EXPECT_TRUE(writeXmlPropertyListFile(info, QFile::encodeName(dir + QStringLiteral("/info.plist")).toStdString()));
        return dir;
    }

    static PropertyList lineEntry(Point start, Point end)
    {
        return makeLine(start, end)->pList();
    }
};

// ---- round trips ---------------------------------------------------------------------

TEST_F(DocumentPackageTest, TwoBitmapsRoundTripExactly)
{
    const QString first = writePng("first.png", 24, 16, [](int x, int y) { return qRgba(x * 10, y * 15, 7, (x * 11 + y) % 256); });
    const QString last = writePng("last.png", 12, 20);
    MorphDocument document;
    document.setImageFromURL(first, 0);
    document.setImageFromURL(last, 1);
    document.setCodecFormat(QStringLiteral("avc1"));
    document.setCodecQuality(300);
    document.setLineColor(LineColor::make(0.25f, 0.5f, 0.75f, 1.0f));
    auto a = makeLine({0.1f, 0.1f}, {0.4f, 0.4f}, {0.2f, 0.1f}, {0.5f, 0.5f});
    auto b = makeLine({0.4f, 0.4f}, {0.8f, 0.3f}, {0.5f, 0.5f}, {0.9f, 0.2f});
    auto c = makeLine({0.0f, 1.0f}, {1.0f, 0.0f});
    b->setDissolveStartTime(0.25f, nullptr);
    document.addMorphLine(a);
    document.addMorphLine(b);
    document.addMorphLine(c);
    ASSERT_EQ(a->attachedLineAtEnd(), b);

    QString error;
    ASSERT_TRUE(document.writeToFile(package(), &error)) << error.toStdString();
    EXPECT_EQ(entries(package()), (QStringList{QStringLiteral("Image_0.tiff"), QStringLiteral("Image_1.tiff"), QStringLiteral("info.plist")}));
    EXPECT_EQ(tiffCompression(package() + QStringLiteral("/Image_0.tiff")), 32773);
    EXPECT_EQ(entries(path(".")).filter(QStringLiteral(".doc.plyra")), QStringList()); // nothing left beside it

    auto read = reopen(package(), &error);
    ASSERT_TRUE(read) << error.toStdString();
    expectSamePixels(QImage(first), read->imageInTrack(0)->raster);
    expectSamePixels(QImage(last), read->imageInTrack(1)->raster);
    EXPECT_EQ(read->imageURLInTrack(0), package() + QStringLiteral("/Image_0.tiff"));
    EXPECT_EQ(read->frameSize(), QSizeF(24, 16));
    EXPECT_EQ(read->codecFormat(), QStringLiteral("avc1"));
    EXPECT_EQ(read->codecQuality(), 300);
    ASSERT_NE(read->storedLineColor(), nullptr);
    EXPECT_EQ(*read->storedLineColor(), (LineColor{0.25f, 0.5f, 0.75f, 1.0f}));
    ASSERT_EQ(read->morphLines().size(), 3u);
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_EQ(read->morphLines()[i]->pList(), document.morphLines()[i]->pList()) << "line " << i;
    EXPECT_EQ(read->morphLines()[0]->attachedLineAtEnd(), read->morphLines()[1]);
    EXPECT_EQ(read->morphLines()[2]->attachedLineAtStart(), nullptr);
    EXPECT_TRUE(read->selectedLines().empty());
}

TEST_F(DocumentPackageTest, InfoPlistHoldsTheDocumentedKeysAndTypes)
{
    MorphDocument document;
    document.setFrameSize(QSizeF(320, 240));
    document.addMorphLine(makeLine({0.1f, 0.2f}, {0.3f, 0.4f}));
    ASSERT_TRUE(document.writeToFile(package()));
    // A document without images still records the TIFF names, but writes no image files.
    EXPECT_EQ(entries(package()), QStringList{QStringLiteral("info.plist")});

    const std::optional<PropertyList> info = readPropertyListFile(QFile::encodeName(package() + QStringLiteral("/info.plist")).toStdString());
    ASSERT_TRUE(info && info->isDictionary());
    EXPECT_EQ(*info->find("firstImagePath")->string(), "Image_0.tiff");
    EXPECT_EQ(*info->find("lastImagePath")->string(), "Image_1.tiff");
    EXPECT_EQ(info->find("frameWidth")->type(), PropertyList::Type::Real);
    EXPECT_EQ(info->find("frameHeight")->doubleValue(), 240.0);
    EXPECT_EQ(*info->find("codecFormat")->string(), "mp4v");
    EXPECT_EQ(info->find("codecQuality")->type(), PropertyList::Type::Integer);
    EXPECT_EQ(info->find("codecQuality")->integerValue(), 768);
    EXPECT_EQ(info->find("lineColorData"), nullptr); // the default colour is not stored
    ASSERT_TRUE(info->find("morphLines")->array());
    ASSERT_EQ(info->find("morphLines")->array()->size(), 1u);
    EXPECT_EQ(info->find("morphLines")->array()->front(), document.morphLines().front()->pList());
}

TEST_F(DocumentPackageTest, PdfImagesKeepTheirOriginalBytes)
{
    const QByteArray pdf = makePdf(30, 20);
    writeBytes(path("first.pdf"), pdf);
    writeBytes(path("last.pdf"), makePdf(10, 40));
    MorphDocument document;
    document.setImageFromURL(path("first.pdf"), 0);
    ASSERT_TRUE(document.imageInTrack(0));
    EXPECT_TRUE(document.imageInTrack(0)->isPdf());
    EXPECT_EQ(document.imageInTrack(0)->size(), QSizeF(30, 20));
    EXPECT_EQ(document.imageInTrack(0)->raster.pixel(15, 10), qRgb(0, 128, 255));
    EXPECT_EQ(document.frameSize(), QSizeF(30, 20));

    ASSERT_TRUE(document.writeToFile(package()));
    EXPECT_EQ(entries(package()), (QStringList{QStringLiteral("Image_0.pdf"), QStringLiteral("info.plist")}));
    EXPECT_EQ(fileBytes(package() + QStringLiteral("/Image_0.pdf")), pdf);

    document.setImageFromURL(path("last.pdf"), 1);
    ASSERT_TRUE(document.writeToFile(package()));
    EXPECT_EQ(entries(package()), (QStringList{QStringLiteral("Image_0.pdf"), QStringLiteral("Image_1.pdf"), QStringLiteral("info.plist")}));

    auto read = reopen(package());
    ASSERT_TRUE(read);
    ASSERT_TRUE(read->imageInTrack(0) && read->imageInTrack(1));
    EXPECT_EQ(read->imageInTrack(0)->pdfData, pdf);
    EXPECT_EQ(read->imageInTrack(1)->size(), QSizeF(10, 40));
    EXPECT_EQ(read->aspectRatioInTrack(1), 0.25f);
}

TEST_F(DocumentPackageTest, AnAbsoluteImagePathIsCopiedIntoThePackageOnTheNextSave)
{
    const QString outside = writePng("outside.png", 9, 7, [](int x, int y) { return qRgba(x * 20, y * 30, 99, 200); });
    const QString hand = packageWithInfo(PropertyList::Dictionary{{"firstImagePath", outside.toStdString()}});
    auto document = reopen(hand);
    ASSERT_TRUE(document);
    EXPECT_EQ(document->imageURLInTrack(0), outside);
    EXPECT_EQ(document->frameSize(), QSizeF(9, 7)); // no stored size: the first image's

    ASSERT_TRUE(document->writeToFile(package()));
    EXPECT_TRUE(QFile::exists(package() + QStringLiteral("/Image_0.tiff")));
    QFile::remove(outside);
    auto read = reopen(package());
    ASSERT_TRUE(read && read->imageInTrack(0));
    expectSamePixels(document->imageInTrack(0)->raster, read->imageInTrack(0)->raster);
}

TEST_F(DocumentPackageTest, FrameSizeIsReadAsIntegers)
{
    MorphDocument document;
    document.setFrameSize(QSizeF(640.7, 480.2));
    ASSERT_TRUE(document.writeToFile(package()));
    auto read = reopen(package());
    ASSERT_TRUE(read);
    EXPECT_EQ(read->frameSize(), QSizeF(640, 480));
}

TEST_F(DocumentPackageTest, LinesWithEndsApartAtOneTrackAreNotJoined)
{
    MorphDocument document;
    auto a = makeLine({0.1f, 0.1f}, {0.4f, 0.4f}, {0.1f, 0.1f}, {0.4f, 0.4f});
    auto b = makeLine({0.4f, 0.4f}, {0.8f, 0.3f}, {0.45f, 0.4f}, {0.8f, 0.3f});
    document.addMorphLine(a);
    document.addMorphLine(b);
    ASSERT_EQ(a->attachedLineAtEnd(), nullptr);
    ASSERT_TRUE(document.writeToFile(package()));
    auto read = reopen(package());
    ASSERT_TRUE(read);
    ASSERT_EQ(read->morphLines().size(), 2u);
    EXPECT_EQ(read->morphLines()[0]->attachedLineAtEnd(), nullptr);
    EXPECT_EQ(read->morphLines()[1]->attachedLineAtStart(), nullptr);
}

TEST_F(DocumentPackageTest, SavingOverAPackageRemovesFilesTheNewSaveDoesNotWrite)
{
    writeBytes(path("first.pdf"), makePdf(30, 20));
    MorphDocument document;
    document.setImageFromURL(path("first.pdf"), 0);
    ASSERT_TRUE(document.writeToFile(package()));
    writeBytes(package() + QStringLiteral("/notes.txt"), "left over");

    document.setImageFromURL(writePng("first.png", 30, 20), 0);
    ASSERT_TRUE(document.writeToFile(package()));
    EXPECT_EQ(entries(package()), (QStringList{QStringLiteral("Image_0.tiff"), QStringLiteral("info.plist")}));
    EXPECT_EQ(entries(path(".")).filter(QStringLiteral(".doc.plyra")), QStringList());
}

TEST_F(DocumentPackageTest, APathWithATrailingSlashNamesThePackage)
{
    MorphDocument document;
    document.setImageFromURL(writePng("first.png", 5, 5), 0);
    ASSERT_TRUE(document.writeToFile(package() + QStringLiteral("/")));
    ASSERT_TRUE(document.writeToFile(package() + QStringLiteral("/")));
    EXPECT_EQ(entries(package()), (QStringList{QStringLiteral("Image_0.tiff"), QStringLiteral("info.plist")}));
    auto read = reopen(package() + QStringLiteral("/"));
    ASSERT_TRUE(read);
    EXPECT_TRUE(read->imageInTrack(0));
}

TEST_F(DocumentPackageTest, SavingOverItsOwnPackageKeepsTheImages)
{
    MorphDocument document;
    document.setImageFromURL(writePng("first.png", 5, 5), 0);
    ASSERT_TRUE(document.writeToFile(package()));
    auto read = reopen(package());
    ASSERT_TRUE(read);
    const QImage before = read->imageInTrack(0)->raster;
    ASSERT_TRUE(read->writeToFile(package()));
    auto again = reopen(package());
    ASSERT_TRUE(again && again->imageInTrack(0));
    expectSamePixels(before, again->imageInTrack(0)->raster);
}

TEST_F(DocumentPackageTest, AFailedSaveReportsAndLogs)
{
    MorphDocument document;
    LogCapture log;
    QString error;
    const QString nowhere = path("no/such/folder/doc.plyra");
    EXPECT_FALSE(document.writeToFile(nowhere, &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_TRUE(log.contains("Plyra could not save dictionary at " + QFile::encodeName(nowhere).toStdString()));
    EXPECT_FALSE(QFileInfo::exists(nowhere));
}

// ---- reading -------------------------------------------------------------------------

TEST_F(DocumentPackageTest, ReadingRegistersNoUndo)
{
    MorphDocument document;
    document.setImageFromURL(writePng("first.png", 8, 6), 0);
    document.addMorphLine(makeLine({0.1f, 0.1f}, {0.4f, 0.4f}));
    document.addMorphLine(makeLine({0.4f, 0.4f}, {0.9f, 0.4f}));
    document.setLineColor(LineColor::make(1, 0, 0, 1));
    ASSERT_TRUE(document.writeToFile(package()));

    auto read = reopen(package());
    ASSERT_TRUE(read);
    EXPECT_TRUE(read->undoManager().isUndoRegistrationEnabled());
    resetCounts();
    EXPECT_FALSE(read->undoManager().canUndo());
    EXPECT_EQ(read->undoManager().undoStepCount(), 0);
    // Editing afterwards registers as usual.
    read->setFrameSize(QSizeF(1, 1));
    EXPECT_TRUE(read->undoManager().canUndo());
}

TEST_F(DocumentPackageTest, LineEntriesMayBeDictionariesOrTexts)
{
    const MorphLine::Ptr textLine = makeLine({0.2f, 0.3f}, {0.6f, 0.7f});
    const PropertyList info(PropertyList::Dictionary{
        {"morphLines", PropertyList::Array{lineEntry({0.1f, 0.1f}, {0.2f, 0.3f}), PropertyList(textLine->description()),
                           PropertyList(42), PropertyList("not a line")}},
    });
    auto read = reopen(packageWithInfo(info));
    ASSERT_TRUE(read);
    ASSERT_EQ(read->morphLines().size(), 2u);
    EXPECT_EQ(read->morphLines()[1]->pList(), textLine->pList());
    EXPECT_EQ(read->morphLines()[0]->attachedLineAtEnd(), read->morphLines()[1]); // ends meet
}

class DocumentPackageBadInfoTest : public DocumentPackageTest {
protected:
    void expectRefused(const QByteArray& infoBytes, const char* what)
    {
        const QString dir = path("bad.plyra");
        QDir().mkpath(dir);
        writeBytes(dir + QStringLiteral("/info.plist"), infoBytes);
        expectRefusedPackage(dir, what);
    }
    void expectRefusedPackage(const QString& dir, const char* what)
    {
        MorphDocument document;
        QString error;
        EXPECT_FALSE(document.readFromFile(dir, &error)) << what;
        EXPECT_FALSE(error.isEmpty()) << what;
        EXPECT_TRUE(error.contains(dir)) << what << ": " << error.toStdString();
        EXPECT_TRUE(document.undoManager().isUndoRegistrationEnabled()) << what;
        EXPECT_TRUE(document.morphLines().empty()) << what;
        EXPECT_EQ(document.codecFormat(), QStringLiteral("mp4v")) << what;
    }
};

TEST_F(DocumentPackageBadInfoTest, MissingInfoPlistIsRefused)
{
    QDir().mkpath(path("empty.plyra"));
    expectRefusedPackage(path("empty.plyra"), "no info.plist");
    expectRefusedPackage(path("nothing-there.plyra"), "no package");
}

TEST_F(DocumentPackageBadInfoTest, UnreadableInfoPlistIsRefused)
{
    MorphDocument document;
    document.addMorphLine(makeLine({0.1f, 0.1f}, {0.4f, 0.4f}));
    ASSERT_TRUE(document.writeToFile(package()));
    const QByteArray good = fileBytes(package() + QStringLiteral("/info.plist"));
    ASSERT_FALSE(good.isEmpty());

    expectRefused(QByteArray(), "empty");
    expectRefused(good.left(good.size() / 2), "truncated");
    expectRefused(QByteArrayLiteral("\x01\x02garbage\xff\xfe not a property list"), "garbage");
    expectRefused(writeXmlPropertyList(PropertyList(PropertyList::Array{PropertyList("a")})).c_str(), "array root");
    expectRefused(writeXmlPropertyList(PropertyList("just text")).c_str(), "string root");
}

TEST_F(DocumentPackageTest, ValuesOfTheWrongTypeFallBackToDefaults)
{
    const PropertyList info(PropertyList::Dictionary{
        {"firstImagePath", PropertyList(12)},
        {"lastImagePath", PropertyList(PropertyList::Dictionary{})},
        {"frameWidth", PropertyList("640")},
        {"frameHeight", PropertyList(PropertyList::Array{})},
        {"codecFormat", PropertyList(5)},
        {"codecQuality", PropertyList("high")},
        {"morphLines", PropertyList(PropertyList::Dictionary{{"a", lineEntry({0, 0}, {1, 1})}})},
    });
    LogCapture log;
    auto read = reopen(packageWithInfo(info));
    ASSERT_TRUE(read);
    EXPECT_TRUE(read->imageURLInTrack(0).isEmpty());
    EXPECT_TRUE(read->imageURLInTrack(1).isEmpty());
    EXPECT_EQ(read->frameSize(), QSizeF(0, 0));
    EXPECT_EQ(read->codecFormat(), QStringLiteral("mp4v"));
    EXPECT_EQ(read->codecQuality(), 768);
    EXPECT_TRUE(read->morphLines().empty());
    EXPECT_EQ(read->storedLineColor(), nullptr);
}

TEST_F(DocumentPackageTest, MissingOrEmptyImagePathsDoNotFailTheDocument)
{
    const PropertyList info(PropertyList::Dictionary{{"lastImagePath", PropertyList("")}, {"codecQuality", PropertyList(100)}});
    auto read = reopen(packageWithInfo(info));
    ASSERT_TRUE(read);
    EXPECT_FALSE(read->imageInTrack(0));
    EXPECT_FALSE(read->imageInTrack(1));
    EXPECT_EQ(read->codecQuality(), 100);
}

TEST_F(DocumentPackageTest, AMissingImageLeavesTheTrackEmptyWithTheLoggedMessage)
{
    MorphDocument document;
    document.setImageFromURL(writePng("first.png", 8, 6), 0);
    document.setImageFromURL(writePng("last.png", 8, 6), 1);
    ASSERT_TRUE(document.writeToFile(package()));
    const QString lastFile = package() + QStringLiteral("/Image_1.tiff");
    writeBytes(lastFile, "II*\0 damaged");

    LogCapture log;
    auto read = reopen(package());
    ASSERT_TRUE(read);
    EXPECT_TRUE(read->imageInTrack(0));
    EXPECT_EQ(read->imageURLInTrack(1), lastFile);
    EXPECT_FALSE(read->imageInTrack(1));
    EXPECT_TRUE(read->ciimageInTrack(1).isNull());
    EXPECT_TRUE(log.contains("Could not create Image from '" + QFile::encodeName(lastFile).toStdString() + "'"));
    EXPECT_TRUE(log.contains("Could not create CIImage from '" + QFile::encodeName(lastFile).toStdString() + "'"));
    EXPECT_EQ(read->aspectRatioInTrack(1), read->aspectRatioInTrack(0));

    // A document without a last image writes its TIFF name and no file; it reads back empty.
    QFile::remove(lastFile);
    ASSERT_TRUE(read->writeToFile(package()));
    EXPECT_FALSE(QFile::exists(lastFile));
    auto again = reopen(package());
    ASSERT_TRUE(again);
    EXPECT_FALSE(again->imageInTrack(1));
}

TEST_F(DocumentPackageTest, ADamagedColourArchiveKeepsTheDefaultColour)
{
    const QByteArray damaged = fileBytes(QStringLiteral(PLYRA_TEST_DATA "/typedstream/bad-truncated.bin"));
    ASSERT_FALSE(damaged.isEmpty());
    const PropertyList info(PropertyList::Dictionary{
        {"lineColorData", PropertyList::Data(damaged.begin(), damaged.end())},
        {"morphLines", PropertyList::Array{lineEntry({0.1f, 0.1f}, {0.2f, 0.3f})}},
    });
    LogCapture log;
    auto read = reopen(packageWithInfo(info));
    ASSERT_TRUE(read);
    EXPECT_TRUE(log.contains("Failed to read line colour data"));
    EXPECT_EQ(read->storedLineColor(), nullptr);
    EXPECT_EQ(read->lineColor(), LineColor::defaultColor());
    EXPECT_EQ(read->morphLines().size(), 1u); // reading goes on

    log.clear();
    const PropertyList notData(PropertyList::Dictionary{{"lineColorData", PropertyList("red")}});
    auto other = reopen(packageWithInfo(notData, "text-colour.plyra"));
    ASSERT_TRUE(other);
    EXPECT_TRUE(log.contains("Failed to read line colour data"));
    EXPECT_EQ(other->storedLineColor(), nullptr);
}

TEST_F(DocumentPackageTest, ArchivedColoursFromExistingDocumentsAreRead)
{
    const QByteArray archive = fileBytes(QStringLiteral(PLYRA_TEST_DATA "/typedstream/genuine-bigendian-calibrated-rgb-red.bin"));
    ASSERT_FALSE(archive.isEmpty());
    const PropertyList info(PropertyList::Dictionary{{"lineColorData", PropertyList::Data(archive.begin(), archive.end())}});
    auto read = reopen(packageWithInfo(info));
    ASSERT_TRUE(read);
    ASSERT_NE(read->storedLineColor(), nullptr);
    EXPECT_EQ(*read->storedLineColor(), (LineColor{1.0f, 0.0f, 0.0f, 1.0f}));
    EXPECT_FALSE(read->undoManager().canUndo());
}

// ---- staged directory ----------------------------------------------------------------

class StagedDirectoryTest : public DocumentTestBase { };

TEST_F(StagedDirectoryTest, AnUncommittedStageLeavesThePreviousDirectoryAlone)
{
    QDir().mkpath(path("pkg"));
    writeBytes(path("pkg/old.txt"), "old");
    {
        StagedDirectory staged(path("pkg"));
        ASSERT_TRUE(staged.isValid());
        writeBytes(staged.stagingFilePath(QStringLiteral("new.txt")), "new");
    }
    EXPECT_EQ(entries(path("pkg")), QStringList{QStringLiteral("old.txt")});
    EXPECT_EQ(entries(path(".")).filter(QStringLiteral(".pkg")), QStringList());
}

TEST_F(StagedDirectoryTest, CommitReplacesTheWholeDirectory)
{
    QDir().mkpath(path("pkg"));
    writeBytes(path("pkg/old.txt"), "old");
    StagedDirectory staged(path("pkg"));
    writeBytes(staged.stagingFilePath(QStringLiteral("new.txt")), "new");
    ASSERT_TRUE(staged.commit());
    EXPECT_EQ(entries(path("pkg")), QStringList{QStringLiteral("new.txt")});
    EXPECT_EQ(fileBytes(path("pkg/new.txt")), QByteArray("new"));
    EXPECT_EQ(entries(path(".")).filter(QStringLiteral(".pkg")), QStringList());
}

TEST_F(StagedDirectoryTest, CommitReplacesAFileAtThePlace)
{
    writeBytes(path("pkg"), "a file, not a package");
    StagedDirectory staged(path("pkg"));
    writeBytes(staged.stagingFilePath(QStringLiteral("new.txt")), "new");
    ASSERT_TRUE(staged.commit());
    EXPECT_TRUE(QFileInfo(path("pkg")).isDir());
}

TEST_F(StagedDirectoryTest, AFailedCommitPutsThePreviousDirectoryBack)
{
    QDir().mkpath(path("pkg"));
    writeBytes(path("pkg/old.txt"), "old");
    StagedDirectory staged(path("pkg"));
    // The staging directory vanishes before the commit: moving it in must fail.
    ASSERT_TRUE(QDir(QFileInfo(staged.stagingFilePath(QStringLiteral("x"))).absolutePath()).removeRecursively());
    QString error;
    EXPECT_FALSE(staged.commit(&error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_EQ(entries(path("pkg")), QStringList{QStringLiteral("old.txt")});
    EXPECT_EQ(entries(path(".")).filter(QStringLiteral(".pkg")), QStringList());
}

TEST_F(StagedDirectoryTest, NoStageWhereTheParentIsMissing)
{
    StagedDirectory staged(path("missing/pkg"));
    EXPECT_FALSE(staged.isValid());
    QString error;
    EXPECT_FALSE(staged.commit(&error));
    EXPECT_TRUE(error.contains(path("missing/pkg")));
}

} // namespace
} // namespace plyra
