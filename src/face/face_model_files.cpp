// SPDX-License-Identifier: MIT
#include "face/face_model_files.h"

#include <cstdlib>
#include <system_error>
#include <vector>

namespace plyra {
namespace fs = std::filesystem;

std::optional<FaceModelFiles> FaceModelFiles::inFolder(const fs::path& folder)
{
    std::error_code ignored;
    FaceModelFiles files{folder / kDetectorFileName, folder / kLandmarksFileName};
    if (fs::is_regular_file(files.detector, ignored) && fs::is_regular_file(files.landmarks, ignored))
        return files;
    return std::nullopt;
}

std::optional<FaceModelFiles> FaceModelFiles::find()
{
    if (const char* folder = std::getenv("PLYRA_FACE_MODEL_DIR"); folder && *folder)
        return inFolder(folder);
    std::error_code ignored;
    const fs::path executable = fs::read_symlink("/proc/self/exe", ignored);
    if (executable.empty())
        return std::nullopt;
    // Installed: bin/plyra and share/plyra/face. Built: resources/face in the build folder,
    // some levels above the program.
    std::vector<fs::path> candidates{executable.parent_path().parent_path() / "share" / "plyra" / "face"};
    for (fs::path folder = executable.parent_path(); folder.has_relative_path(); folder = folder.parent_path()) {
        candidates.push_back(folder / "resources" / "face");
        if (candidates.size() > 5)
            break;
    }
    for (const fs::path& folder : candidates) {
        if (std::optional<FaceModelFiles> files = inFolder(folder))
            return files;
    }
    return std::nullopt;
}

} // namespace plyra
