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
#include <QFileInfo>

#include <memory>
#include <vector>

namespace plyra {
namespace {

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
    const QByteArray count = QByteArray::number(static_cast<int>(objects.size() + 1));
    pdf += "xref\n0 " + count + "\n0000000000 65535 f \n";
    for (qsizetype offset : offsets)
        pdf += QByteArray::number(offset).rightJustified(10, '0') + " 00000 n \n";
    return pdf + "trailer\n<< /Size " + count + " /Root 1 0 R >>\nstartxref\n" + QByteArray::number(xref) + "\n%%EOF\n";
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

QImage argb(const QImage& image) { return image.convertToFormat(QImage::Format_ARGB32); }

class DocumentPackageTest : public test::DocumentTestBase {
protected:
    QString package() const { return path("doc.plyra"); }
    QString inPackage(const char* name) const { return package() + QLatin1Char('/') + QLatin1String(name); }

    static std::unique_ptr<MorphDocument> reopen(const QString& packagePath, QString* error = nullptr)
    {
        auto document = std::make_unique<MorphDocument>();
        return document->readFromFile(packagePath, error) ? std::move(document) : nullptr;
    }

    QString packageWithInfo(const PropertyList& info, const char* name = "hand.plyra") const
    {
        const QString dir = path(name);
        EXPECT_TRUE(QDir().mkpath(dir));
        EXPECT_TRUE(writeXmlPropertyListFile(info, QFile::encodeName(dir + QStringLiteral("/info.plist")).toStdString()));
        return dir;
    }
};

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
    document.setFrameSize(QSizeF(640.7, 480.2));
    auto a = makeLine({0.1f, 0.1f}, {0.4f, 0.4f}, {0.2f, 0.1f}, {0.5f, 0.5f});
    auto b = makeLine({0.4f, 0.4f}, {0.8f, 0.3f}, {0.5f, 0.5f}, {0.9f, 0.2f});
    b->setDissolveStartTime(0.25f, nullptr);
    // The last line meets the third at track 0 only: not joined.
    for (const auto& line : {a, b, makeLine({0.0f, 1.0f}, {1.0f, 0.0f}), makeLine({1.0f, 0.0f}, {0.5f, 0.5f}, {1.05f, 0.0f}, {0.5f, 0.5f})})
        document.addMorphLine(line);
    ASSERT_EQ(a->attachedLineAtEnd(), b);

    QString error;
    ASSERT_TRUE(document.writeToFile(package(), &error)) << error.toStdString();
    EXPECT_EQ(entries(package()), (QStringList{QStringLiteral("Image_0.tiff"), QStringLiteral("Image_1.tiff"), QStringLiteral("info.plist")}));
    EXPECT_EQ(entries(path(".")).filter(QStringLiteral(".doc.plyra")), QStringList()); // nothing left beside it

    auto read = reopen(package(), &error);
    ASSERT_TRUE(read) << error.toStdString();
    EXPECT_EQ(argb(QImage(first)), argb(read->imageInTrack(0)->raster));
    EXPECT_EQ(argb(QImage(last)), argb(read->imageInTrack(1)->raster));
    EXPECT_EQ(read->imageURLInTrack(0), inPackage("Image_0.tiff"));
    EXPECT_EQ(read->frameSize(), QSizeF(640, 480));
    EXPECT_EQ(read->codecFormat(), QStringLiteral("avc1"));
    EXPECT_EQ(read->codecQuality(), 300);
    ASSERT_NE(read->storedLineColor(), nullptr);
    EXPECT_EQ(*read->storedLineColor(), (LineColor{0.25f, 0.5f, 0.75f, 1.0f}));
    ASSERT_EQ(read->morphLines().size(), 4u);
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_EQ(read->morphLines()[i]->pList(), document.morphLines()[i]->pList()) << "line " << i;
    EXPECT_EQ(read->morphLines()[0]->attachedLineAtEnd(), read->morphLines()[1]);
    EXPECT_EQ(read->morphLines()[2]->attachedLineAtEnd(), nullptr);
    EXPECT_EQ(read->morphLines()[3]->attachedLineAtStart(), nullptr);

    // Reading registers no undo; editing afterwards does.
    EXPECT_TRUE(read->undoManager().isUndoRegistrationEnabled());
    EXPECT_FALSE(read->undoManager().canUndo());
    read->setFrameSize(QSizeF(1, 1));
    EXPECT_TRUE(read->undoManager().canUndo());
}

TEST_F(DocumentPackageTest, SixteenBitPngsKeepEveryValueThroughSaveAndOpen)
{
    // Values an 8-bit file would round; with alpha (RGBA64) and without (RGBX64).
    for (const QImage::Format format : {QImage::Format_RGBA64, QImage::Format_RGBX64}) {
        QImage deep(10, 7, format);
        for (int y = 0; y < deep.height(); ++y)
            for (int x = 0; x < deep.width(); ++x)
                deep.setPixelColor(x, y, QColor::fromRgba64(std::uint16_t(x * 6007 + y * 13), std::uint16_t(y * 9001 + 7),
                                                            std::uint16_t(x * y * 777 + 1),
                                                            format == QImage::Format_RGBX64 ? 0xffff : std::uint16_t(x * 6000 + 4001)));
        const QString png = path(format == QImage::Format_RGBA64 ? "deep-rgba.png" : "deep-rgb.png");
        ASSERT_TRUE(deep.save(png, "PNG"));
        MorphDocument document;
        document.setImageFromURL(png, 0);
        ASSERT_TRUE(document.imageInTrack(0));
        QString error;
        ASSERT_TRUE(document.writeToFile(package(), &error)) << error.toStdString();
        auto read = reopen(package(), &error);
        ASSERT_TRUE(read && read->imageInTrack(0)) << error.toStdString();
        const QImage expected = deep.convertToFormat(QImage::Format_RGBA64);
        const QImage actual = read->imageInTrack(0)->raster.convertToFormat(QImage::Format_RGBA64);
        ASSERT_EQ(actual.size(), expected.size());
        for (int y = 0; y < expected.height(); ++y)
            for (int x = 0; x < expected.width(); ++x)
                ASSERT_EQ(actual.pixelColor(x, y).rgba64(), expected.pixelColor(x, y).rgba64()) << x << "," << y;
    }
}

TEST_F(DocumentPackageTest, PdfImagesKeepTheirOriginalBytes)
{
    const QByteArray pdf = makePdf(30, 20);
    writeBytes(path("first.pdf"), pdf);
    MorphDocument document;
    document.setImageFromURL(path("first.pdf"), 0);
    ASSERT_TRUE(document.imageInTrack(0));
    EXPECT_TRUE(document.imageInTrack(0)->isPdf());
    EXPECT_EQ(document.imageInTrack(0)->size(), QSizeF(30, 20));
    EXPECT_EQ(document.imageInTrack(0)->raster.pixel(15, 10), qRgb(0, 128, 255));
    EXPECT_EQ(document.frameSize(), QSizeF(30, 20));
    ASSERT_TRUE(document.writeToFile(package()));
    EXPECT_EQ(entries(package()), (QStringList{QStringLiteral("Image_0.pdf"), QStringLiteral("info.plist")}));
    EXPECT_EQ(fileBytes(inPackage("Image_0.pdf")), pdf);
    auto read = reopen(package());
    ASSERT_TRUE(read && read->imageInTrack(0));
    EXPECT_EQ(read->imageInTrack(0)->pdfData, pdf);
}

TEST_F(DocumentPackageTest, AnAbsoluteImagePathIsCopiedIntoThePackageOnTheNextSave)
{
    const QString outside = writePng("outside.png", 9, 7, [](int x, int y) { return qRgba(x * 20, y * 30, 99, 200); });
    auto document = reopen(packageWithInfo(PropertyList::Dictionary{{"firstImagePath", outside.toStdString()}}));
    ASSERT_TRUE(document);
    EXPECT_EQ(document->imageURLInTrack(0), outside);
    EXPECT_EQ(document->frameSize(), QSizeF(9, 7)); // no stored size: the first image's

    ASSERT_TRUE(document->writeToFile(package()));
    EXPECT_TRUE(QFile::exists(inPackage("Image_0.tiff")));
    QFile::remove(outside);
    auto read = reopen(package());
    ASSERT_TRUE(read && read->imageInTrack(0));
    EXPECT_EQ(argb(document->imageInTrack(0)->raster), argb(read->imageInTrack(0)->raster));
}

// The images the package named are the document's: a new form replaces them. Files of
// the user's own stay.
TEST_F(DocumentPackageTest, SavingOverAPackageReplacesItsImagesAndKeepsOtherFiles)
{
    writeBytes(path("first.pdf"), makePdf(30, 20));
    MorphDocument document;
    document.setImageFromURL(path("first.pdf"), 0);
    document.setImageFromURL(writePng("last.png", 5, 5), 1);
    ASSERT_TRUE(document.writeToFile(package()));
    writeBytes(inPackage("notes.txt"), "left over");

    // Saved over itself through a trailing slash: the last image comes from the package being replaced.
    const QString slashed = package() + QStringLiteral("/");
    auto read = reopen(slashed);
    ASSERT_TRUE(read && read->imageInTrack(1));
    read->setImageFromURL(writePng("first.png", 30, 20), 0);
    ASSERT_TRUE(read->writeToFile(slashed));
    EXPECT_EQ(entries(package()), (QStringList{QStringLiteral("Image_0.tiff"), QStringLiteral("Image_1.tiff"),
                                      QStringLiteral("info.plist"), QStringLiteral("notes.txt")}));
    EXPECT_EQ(fileBytes(inPackage("notes.txt")), QByteArray("left over"));
    auto again = reopen(package());
    ASSERT_TRUE(again && again->imageInTrack(1));
    EXPECT_EQ(argb(read->imageInTrack(1)->raster), argb(again->imageInTrack(1)->raster));
}

TEST_F(DocumentPackageTest, SizesAndQualityStoredAsStringsAreReadByTheirIntegerValue)
{
    using Dictionary = PropertyList::Dictionary;
    const struct { const char* name; Dictionary info; QSizeF size; int quality; } cases[] = {
        {"strings.plyra", Dictionary{{"frameWidth", "640"}, {"frameHeight", "480"}, {"codecQuality", "512"}}, {640, 480}, 512},
        {"mixed.plyra", Dictionary{{"frameWidth", 320.9}, {"frameHeight", " 240.7 px"}, {"codecQuality", 100}}, {320, 240}, 100},
        {"numbers.plyra", Dictionary{{"frameWidth", 64.0}, {"frameHeight", std::int64_t{48}}, {"codecQuality", "1023.9"}},
         {64, 48}, 1023},
    };
    for (const auto& c : cases) {
        auto read = reopen(packageWithInfo(c.info, c.name));
        ASSERT_TRUE(read) << c.name;
        EXPECT_EQ(read->frameSize(), c.size) << c.name;
        EXPECT_EQ(read->codecQuality(), c.quality) << c.name;
    }
}

TEST_F(DocumentPackageTest, MovieSettingsRoundTripAndDocumentsWithoutThemStayAsTheyWere)
{
    const QString first = writePng("first.png", 24, 16);
    MorphDocument document;
    document.setImageFromURL(first, 0);
    // A document that never had movie settings writes none and reads back without them.
    ASSERT_TRUE(document.writeToFile(package()));
    const std::optional<PropertyList> plain = readPropertyListFile(QFile::encodeName(inPackage("info.plist")).toStdString());
    ASSERT_TRUE(plain);
    EXPECT_EQ(plain->find("movieSettings"), nullptr);
    EXPECT_FALSE(reopen(package())->movieSettings());

    const MovieSettings movie{48, 24.0f, false, 1, 640.0f, 360.0f, 0.25f, 0.5f, true, {Easing::EaseInOut, 1.5, 0.75, true}};
    document.setMovieSettings(movie);
    endPass();
    EXPECT_EQ(document.undoManager().undoActionName(), "Change Movie Settings");
    ASSERT_TRUE(document.writeToFile(package()));
    auto read = reopen(package());
    ASSERT_TRUE(read && read->movieSettings());
    EXPECT_EQ(*read->movieSettings(), movie);
    EXPECT_FALSE(read->undoManager().canUndo());

    // Entries of the wrong type or out of range keep their defaults; a stray value is no
    // dictionary and no settings.
    using Dictionary = PropertyList::Dictionary;
    const Dictionary damaged{{"frames", "many"}, {"framesPerSecond", -5.0}, {"easing", "bounce"}, {"holdStart", 2.0},
                             {"pingPong", std::int64_t{1}}, {"frameRatio", std::int64_t{7}}};
    auto odd = reopen(packageWithInfo(Dictionary{{"movieSettings", damaged}}, "odd.plyra"));
    MovieSettings expected;
    expected.timing.holdStart = 2.0;
    ASSERT_TRUE(odd && odd->movieSettings());
    EXPECT_EQ(*odd->movieSettings(), expected);
    EXPECT_FALSE(reopen(packageWithInfo(Dictionary{{"movieSettings", "fast"}}, "stray.plyra"))->movieSettings());
}

TEST_F(DocumentPackageTest, AFailedSaveNamesTheStepThatFailed)
{
    // The package cannot even be begun: its folder is missing, or is a file.
    writeBytes(path("plain-file"), "not a folder");
    MorphDocument document;
    document.setImageFromURL(writePng("first.png", 8, 6), 0);
    const struct { const char* package; const char* reason; } cases[] = {
        {"missing/doc.plyra", "No such file or directory"}, {"plain-file/doc.plyra", "Not a directory"}};
    for (const auto& c : cases) {
        const QString target = path(c.package);
        LogCapture log;
        QString error;
        EXPECT_FALSE(document.writeToFile(target, &error)) << c.package;
        EXPECT_TRUE(error.contains(QStringLiteral("Could not create a folder beside “%1”").arg(target))) << error.toStdString();
        EXPECT_TRUE(error.contains(QLatin1String(c.reason))) << error.toStdString();
        EXPECT_TRUE(log.contains("could not create a folder to save " + QFile::encodeName(target).toStdString())) << c.package;
        EXPECT_FALSE(log.contains("dictionary")) << c.package; // no step after the first was tried
        EXPECT_FALSE(QFileInfo::exists(target)) << c.package;
    }
}

TEST_F(DocumentPackageTest, UnreadableInfoPlistIsRefused)
{
    MorphDocument document;
    document.addMorphLine(makeLine({0.1f, 0.1f}, {0.4f, 0.4f}));
    ASSERT_TRUE(document.writeToFile(package()));
    const QByteArray good = fileBytes(inPackage("info.plist"));
    ASSERT_FALSE(good.isEmpty());

    struct Case { const char* what; bool folder; std::optional<QByteArray> info; };
    const std::vector<Case> cases = {
        {"no package", false, std::nullopt},
        {"no info.plist", true, std::nullopt},
        {"empty", true, QByteArray()},
        {"truncated", true, good.left(good.size() / 2)},
        {"garbage", true, QByteArrayLiteral("\x01\x02garbage\xff\xfe not a property list")},
        {"array root", true, QByteArray(writeXmlPropertyList(PropertyList(PropertyList::Array{PropertyList("a")})).c_str())},
        {"string root", true, QByteArray(writeXmlPropertyList(PropertyList("just text")).c_str())},
    };
    for (const auto& [what, folder, bytes] : cases) {
        const QString dir = path(what);
        if (folder)
            QDir().mkpath(dir);
        if (bytes)
            writeBytes(dir + QStringLiteral("/info.plist"), *bytes);
        MorphDocument refused;
        QString error;
        EXPECT_FALSE(refused.readFromFile(dir, &error)) << what;
        EXPECT_TRUE(error.contains(dir)) << what << ": " << error.toStdString();
        EXPECT_TRUE(refused.undoManager().isUndoRegistrationEnabled()) << what;
        EXPECT_TRUE(refused.morphLines().empty()) << what;
        EXPECT_EQ(refused.codecFormat(), QStringLiteral("mp4v")) << what;
    }
}

TEST_F(DocumentPackageTest, AMissingImageLeavesTheTrackEmptyWithTheLoggedMessage)
{
    MorphDocument document;
    document.setImageFromURL(writePng("first.png", 8, 6), 0);
    document.setImageFromURL(writePng("last.png", 8, 6), 1);
    ASSERT_TRUE(document.writeToFile(package()));
    const QString lastFile = inPackage("Image_1.tiff");
    writeBytes(lastFile, "II*\0 damaged");

    LogCapture log;
    auto read = reopen(package());
    ASSERT_TRUE(read && read->imageInTrack(0));
    EXPECT_EQ(read->imageURLInTrack(1), lastFile);
    EXPECT_FALSE(read->imageInTrack(1));
    EXPECT_TRUE(read->ciimageInTrack(1).isNull());
    // Once, with the reader's reason.
    EXPECT_EQ(log.count("Could not create Image from '" + QFile::encodeName(lastFile).toStdString() + "': "), 1);
    EXPECT_TRUE(log.contains("it is not an image in a format Plyra can read")) << log.lines().front();
    EXPECT_EQ(log.count("Could not create CIImage from"), 0);
    EXPECT_EQ(read->aspectRatioInTrack(1), read->aspectRatioInTrack(0));

}

TEST_F(DocumentPackageTest, ColourArchivesAreReadAndDamagedOnesKeepTheDefault)
{
    const auto data = [](const char* name) {
        const QByteArray bytes = fileBytes(QStringLiteral(PLYRA_TEST_DATA "/typedstream/") + QLatin1String(name));
        EXPECT_FALSE(bytes.isEmpty()) << name;
        return PropertyList(PropertyList::Data(bytes.begin(), bytes.end()));
    };
    const LineColor red{1.0f, 0.0f, 0.0f, 1.0f};
    const std::vector<std::pair<PropertyList, const LineColor*>> cases = {
        {data("genuine-bigendian-calibrated-rgb-red.bin"), &red},
        {data("bad-truncated.bin"), nullptr},
        {PropertyList("red"), nullptr},
    };
    for (std::size_t row = 0; row < cases.size(); ++row) {
        const auto& [colorData, expected] = cases[row];
        const std::string name = "colour" + std::to_string(row) + ".plyra";
        LogCapture log;
        auto read = reopen(packageWithInfo(PropertyList::Dictionary{{"lineColorData", colorData},
                                               {"morphLines", PropertyList::Array{makeLine({0.1f, 0.1f}, {0.2f, 0.3f})->pList()}}},
            name.c_str()));
        ASSERT_TRUE(read) << row;
        EXPECT_EQ(log.contains("Failed to read line colour data"), expected == nullptr) << row;
        EXPECT_EQ(read->morphLines().size(), 1u) << row; // reading goes on
        EXPECT_FALSE(read->undoManager().canUndo()) << row;
        ASSERT_EQ(read->storedLineColor() == nullptr, expected == nullptr) << row;
        EXPECT_EQ(*read->lineColor(), expected ? *expected : *LineColor::defaultColor()) << row;
    }
}

// An abandoned or failed commit leaves the previous directory, and nothing beside it.
TEST(StagedDirectory, AFailedSaveKeepsThePreviousDirectory)
{
    QTemporaryDir dir;
    const QString pkg = dir.filePath(QStringLiteral("pkg"));
    QDir().mkpath(pkg);
    writeBytes(pkg + QStringLiteral("/old.txt"), "old");
    {
        StagedDirectory abandoned(pkg);
        ASSERT_TRUE(abandoned.isValid());
        writeBytes(abandoned.stagingFilePath(QStringLiteral("new.txt")), "new");
    }
    StagedDirectory staged(pkg);
    // The staging directory vanishes before the commit: moving it in must fail.
    ASSERT_TRUE(QDir(QFileInfo(staged.stagingFilePath(QStringLiteral("x"))).absolutePath()).removeRecursively());
    QString error;
    EXPECT_FALSE(staged.commit(&error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_EQ(entries(pkg), QStringList{QStringLiteral("old.txt")});
    EXPECT_EQ(fileBytes(pkg + QStringLiteral("/old.txt")), QByteArray("old"));
    EXPECT_EQ(entries(dir.path()).filter(QStringLiteral(".pkg")), QStringList());
}

} // namespace
} // namespace plyra
