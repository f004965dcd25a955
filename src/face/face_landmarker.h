// SPDX-License-Identifier: MIT
#pragma once

#include "face/face_landmarks.h"
#include "face/face_model_files.h"
#include "platform/image/image.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace plyra {

/// Finds the most prominent face of an image and its landmarks: the detector on a small
/// copy of the whole picture, then the landmark network on a square around the face
/// turned upright by its eyes, then once more on the square the first landmarks give.
/// Threads: one thread at a time per landmarker (any thread); the image may be shared.
class FaceLandmarker {
public:
    /// A landmarker over the networks in files; null, with a reason in error, when they
    /// do not load.
    static std::unique_ptr<FaceLandmarker> create(const FaceModelFiles& files, std::string* error = nullptr);
    ~FaceLandmarker();
    FaceLandmarker(const FaceLandmarker&) = delete;
    FaceLandmarker& operator=(const FaceLandmarker&) = delete;

    /// Asked between the steps of a search; true ends it without a result.
    using Stop = std::function<bool()>;

    /// The landmarks of the largest face; none when the image (a bitmap image) shows no
    /// face the networks are sure of, or when stop answered true. Throws
    /// std::runtime_error when the networks fail (what() says why) and std::bad_alloc.
    std::optional<FaceLandmarks> find(const Image& image, const Stop& stop = {});

private:
    std::optional<FaceLandmarks> search(const Image& image, const Stop& stop);
    struct Networks;
    explicit FaceLandmarker(std::unique_ptr<Networks> networks);
    std::unique_ptr<Networks> m_networks;
};

} // namespace plyra
