// SPDX-License-Identifier: MIT
// Reads packages whose "info.plist" is fuzzed and whose entries are FIFOs, links to
// /dev/zero or /dev/stdin, folders, empty or 30 GB sparse files (package_fuzz_input.h).
// Reading must end at once, and a refused package must say why.
#include "model/morph_document.h"
#include "package_fuzz_input.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static int argc = 1;
    static char name[] = "document_package_fuzz";
    static char* argv[] = {name, nullptr};
    static QCoreApplication app(argc, argv);
    QTemporaryDir scratch;
    const QString package = scratch.filePath(QStringLiteral("doc.plyra"));
    plyra::fuzz::buildPackage(package, data, size);
    plyra::MorphDocument document;
    QString error;
    if (!document.readFromFile(package, &error)) {
        if (error.isEmpty())
            std::abort(); // a refusal must say why
        return 0;
    }
    for (unsigned track : {0u, 1u}) {
        const bool shown = document.imageInTrack(track).has_value();
        const bool rendered = !document.ciimageInTrack(track).isNull();
        // A track gives both images or neither, and a failure says why.
        if (shown != rendered || (!shown && document.imageFailureInTrack(track) && document.imageFailureInTrack(track)->reason.isEmpty()))
            std::abort();
    }
    return 0;
}
