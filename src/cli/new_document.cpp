// SPDX-License-Identifier: MIT
#include "cli/new_document.h"

#include "cli/cli_runner.h"
#include "face/face_landmarker.h"
#include "face/face_lines.h"
#include "model/morph_document.h"
#include "platform/stop_request.h"

#include <array>
#include <filesystem>
#include <optional>
#include <stdexcept>
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
            // An interrupted read is said once, by the caller.
            if (!StopRequest::isRequested())
                fail(err, std::string("cannot read ") + kTrackNames[track] + " '" + paths[track] + "': " + reason.toStdString());
            return false;
        }
    }
    return true;
}

// The landmarks of each image's face; none (and a message) when a face is missing, the
// search fails, there are no networks in this build, or an interrupt stopped the search.
std::optional<std::array<FaceLandmarks, 2>> findFaces(const CliOptions& options, const MorphDocument& document,
    std::ostream& err)
{
    const std::optional<FaceModelFiles> files = FaceModelFiles::find();
    if (!files) {
        fail(err, "face lines are not available in this build");
        return std::nullopt;
    }
    std::string reason;
    const std::unique_ptr<FaceLandmarker> landmarker = FaceLandmarker::create(*files, &reason);
    if (!landmarker) {
        fail(err, "face lines are not available: " + reason);
        return std::nullopt;
    }
    const std::string paths[2] = {options.firstImagePath, options.lastImagePath};
    std::array<FaceLandmarks, 2> faces;
    for (unsigned track = 0; track < 2; ++track) {
        std::optional<FaceLandmarks> face;
        try {
            face = landmarker->find(document.ciimageInTrack(track), [] { return StopRequest::isRequested(); });
        } catch (const std::runtime_error& e) {
            fail(err, std::string("cannot find the face in ") + kTrackNames[track] + " '" + paths[track] + "': " + e.what());
            return std::nullopt;
        }
        if (StopRequest::isRequested())
            return std::nullopt;
        if (!face) {
            fail(err, std::string("no face found in ") + kTrackNames[track] + " '" + paths[track] + "'");
            return std::nullopt;
        }
        faces[track] = std::move(*face);
    }
    return faces;
}

int interrupted(std::ostream& err)
{
    err << "plyra-render: interrupted; nothing was written\n";
    return kExitInterrupted;
}

} // namespace

int runNewDocument(const CliOptions& options, std::ostream& out, std::ostream& err)
{
    if (!checkOutput(options, err))
        return kExitFailure;
    MorphDocument document;
    document.undoManager().disableUndoRegistration();
    // An interrupt while the images load or the faces are searched ends the run before
    // anything is written.
    const bool read = setImages(options, document, err);
    if (StopRequest::isRequested())
        return interrupted(err);
    if (!read)
        return kExitFailure;
    if (options.faceLines) {
        const std::optional<std::array<FaceLandmarks, 2>> faces = findFaces(options, document, err);
        if (StopRequest::isRequested())
            return interrupted(err);
        if (!faces)
            return kExitFailure;
        for (const MorphLine::Ptr& line : faceLines((*faces)[0], (*faces)[1]))
            document.addMorphLine(line);
    }
    QString reason;
    if (!document.writeToFile(QString::fromStdString(options.outputPath), &reason))
        return StopRequest::isRequested() ? interrupted(err) : fail(err, "cannot write '" + options.outputPath + "': " + reason.toStdString());
    if (!options.quiet)
        out << "plyra-render: wrote " << options.outputPath << " (" << document.morphLines().size() << " lines)\n";
    return kExitSuccess;
}

} // namespace plyra
