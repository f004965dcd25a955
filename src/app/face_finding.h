// SPDX-License-Identifier: MIT
#pragma once

#include "app/face_lines_command.h"
#include "face/face_model_files.h"

#include <functional>
#include <optional>

namespace plyra {

/// How the document windows find faces: whether this build can (without the networks the
/// command is disabled) and the finder each window's Add Face Lines uses. The application
/// holds the installed one; tests give their own.
/// Threads: main thread; each finder is used by one worker at a time.
struct FaceFinding {
    bool isAvailable = false;
    /// Makes the finder of one window.
    std::function<FaceLinesCommand::FaceFinder()> makeFinder;
    /// Null: each command runs its finder on a worker thread of its own.
    FaceLinesCommand::Runner runner;

    /// Over the networks in files; a finder loads them at its first search and throws
    /// when they do not load. Not available without files.
    static FaceFinding fromFiles(const std::optional<FaceModelFiles>& files);
    /// Over the networks installed with the program, looked up now.
    static FaceFinding installed() { return fromFiles(FaceModelFiles::find()); }
};

} // namespace plyra
