// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <optional>

namespace plyra {

/// The converted face networks: the face detector and the 468-point landmark network,
/// installed with the program (share/plyra/face) or built beside it (resources/face).
/// PLYRA_FACE_MODEL_DIR names another folder.
/// Threads: any.
struct FaceModelFiles {
    static constexpr const char* kDetectorFileName = "face_detection_short_range.onnx";
    static constexpr const char* kLandmarksFileName = "face_landmark.onnx";

    std::filesystem::path detector;
    std::filesystem::path landmarks;

    /// The first folder that holds both files; none when this build has no face models.
    static std::optional<FaceModelFiles> find();
    static std::optional<FaceModelFiles> inFolder(const std::filesystem::path& folder);
};

} // namespace plyra
