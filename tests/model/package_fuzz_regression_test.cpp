// SPDX-License-Identifier: MIT
// The package fuzzer's seeds (one per kind of hostile entry) and every input that ever
// made it fail are read again as packages: each is read or refused with a reason, at once.
#include "../fuzz/package_fuzz_input.h"
#include "model/morph_document.h"
#include "platform/log.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace plyra {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

std::vector<fs::path> recordedInputs()
{
    std::vector<fs::path> inputs;
    for (const fs::path& folder : {fs::path(PLYRA_TEST_DATA) / ".." / ".." / "fuzz" / "corpus" / "document_package_fuzz",
                                  fs::path(PLYRA_TEST_DATA) / "fuzz" / "document_package"}) {
        if (fs::is_directory(folder))
            for (const auto& file : fs::directory_iterator(folder))
                inputs.push_back(file.path());
    }
    return inputs;
}

TEST(PackageFuzzRegression, EveryHostilePackageIsReadOrRefusedWithAReasonAtOnce)
{
    const std::vector<fs::path> inputs = recordedInputs();
    ASSERT_GE(inputs.size(), 17u);
    int opened = 0;
    for (const fs::path& input : inputs) {
        SCOPED_TRACE(input.string());
        std::ifstream in(input, std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
        QTemporaryDir scratch;
        const QString package = scratch.filePath(QStringLiteral("doc.plyra"));
        fuzz::buildPackage(package, reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
        LogCapture log;
        const Clock::time_point start = Clock::now();
        MorphDocument document;
        QString error;
        const bool read = document.readFromFile(package, &error);
        EXPECT_TRUE(read || !error.isEmpty());
        for (unsigned track : {0u, 1u}) {
            EXPECT_EQ(document.imageInTrack(track).has_value(), !document.ciimageInTrack(track).isNull());
            const std::optional<ImageLoadFailure> failure = document.imageFailureInTrack(track);
            EXPECT_TRUE(!failure || !failure->reason.isEmpty());
        }
        EXPECT_LT(Clock::now() - start, std::chrono::seconds(2));
        // One line per image that could not be read, however often it was asked for.
        EXPECT_LE(log.count("Could not create"), 2);
        opened += read ? 1 : 0;
    }
    // The packages with a regular info.plist open, whatever their images are.
    EXPECT_GE(opened, 9);
}

} // namespace
} // namespace plyra
