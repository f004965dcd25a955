// SPDX-License-Identifier: MIT
#include "cli/new_document.h"

#include "cli/cli_runner.h"
#include "face/face_landmarker.h"
#include "face/face_lines.h"
#include "model/morph_document.h"

#include <filesystem>
#include <ostream>

namespace plyra {
namespace {

namespace fs = std::filesystem;

constexpr const char* kTrackNames[2] = {"the first image", "the last image"};

int fail(std::ostream& err, const std::string& message)
{
    err << "plyra-render: " << message << "\n";
    return kExitFailure;
}

bool isInside(const fs::path& path, const fs::path& folder)
{
    std::error_code ignored;
    const fs::path p = fs::weakly_canonical(fs::absolute(path, ignored), ignored);
    const fs::path f = fs::weakly_canonical(fs::absolute(folder, ignored), ignored);
    const auto [end, rest] = std::mismatch(f.begin(), f.end(), p.begin(), p.end());
    return end == f.end();
}

// Refuses an output that is there already, or that would land inside an input.
bool checkOutput(const CliOptions& options, std::ostream& err)
{
    const fs::path output(options.outputPath);
    std::error_code ignored;
    if (fs::symlink_status(output, ignored).type() != fs::file_type::not_found) {
        fail(err, "cannot write '" + options.outputPath + "': it exists already");
        return false;
    }
    for (const std::string& input : {options.firstImagePath, options.lastImagePath}) {
        if (isInside(output, input)) {
            fail(err, "cannot write '" + options.outputPath + "': it would lie inside the image '" + input + "'");
            return false;
        }
    }
    return true;
}

bool setImages(const CliOptions& options, MorphDocument& document, std::ostream& err)
{
    const std::string paths[2] = {options.firstImagePath, options.lastImagePath};
    for (unsigned track = 0; track < 2; ++track) {
        QString reason;
        if (!document.setImageFromFile(QString::fromStdString(paths[track]), track, &reason)) {
            fail(err, std::string("cannot read ") + kTrackNames[track] + " '" + paths[track] + "': " + reason.toStdString());
            return false;
        }
    }
    return true;
}

// Adds the face lines; false (and a message) when a face is missing or there are no
// networks in this build.
bool addFaceLines(const CliOptions& options, MorphDocument& document, std::ostream& err)
{
    const std::optional<FaceModelFiles> files = FaceModelFiles::find();
    if (!files) {
        fail(err, "face lines are not available in this build");
        return false;
    }
    std::string reason;
    const std::unique_ptr<FaceLandmarker> landmarker = FaceLandmarker::create(*files, &reason);
    if (!landmarker) {
        fail(err, "face lines are not available: " + reason);
        return false;
    }
    const std::string paths[2] = {options.firstImagePath, options.lastImagePath};
    std::optional<FaceLandmarks> faces[2];
    for (unsigned track = 0; track < 2; ++track) {
        faces[track] = landmarker->find(document.ciimageInTrack(track));
        if (!faces[track]) {
            fail(err, std::string("no face found in ") + kTrackNames[track] + " '" + paths[track] + "'");
            return false;
        }
    }
    for (const MorphLine::Ptr& line : faceLines(*faces[0], *faces[1]))
        document.addMorphLine(line);
    return true;
}

} // namespace

int runNewDocument(const CliOptions& options, std::ostream& out, std::ostream& err)
{
    if (!checkOutput(options, err))
        return kExitFailure;
    MorphDocument document;
    document.undoManager().disableUndoRegistration();
    if (!setImages(options, document, err))
        return kExitFailure;
    if (options.faceLines && !addFaceLines(options, document, err))
        return kExitFailure;
    QString reason;
    if (!document.writeToFile(QString::fromStdString(options.outputPath), &reason))
        return fail(err, "cannot write '" + options.outputPath + "': " + reason.toStdString());
    if (!options.quiet)
        out << "plyra-render: wrote " << options.outputPath << " (" << document.morphLines().size() << " lines)\n";
    return kExitSuccess;
}

} // namespace plyra
