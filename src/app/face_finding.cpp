// SPDX-License-Identifier: MIT
#include "app/face_finding.h"

#include "face/face_landmarker.h"

#include <memory>
#include <stdexcept>

namespace plyra {

FaceFinding FaceFinding::fromFiles(const std::optional<FaceModelFiles>& files)
{
    FaceFinding finding;
    finding.isAvailable = files.has_value();
    finding.makeFinder = [files]() -> FaceLinesCommand::FaceFinder {
        // The networks load on the worker at the first search and stay for the next.
        auto landmarker = std::make_shared<std::unique_ptr<FaceLandmarker>>();
        return [files, landmarker](const Image& image, const FaceLinesCommand::Stop& stop) -> std::optional<FaceLandmarks> {
            if (!*landmarker) {
                std::string reason = "the face networks are not installed";
                if (files)
                    *landmarker = FaceLandmarker::create(*files, &reason);
                if (!*landmarker)
                    throw std::runtime_error(reason);
            }
            return (*landmarker)->find(image, stop);
        };
    };
    return finding;
}

} // namespace plyra
