// SPDX-License-Identifier: MIT
#pragma once

#include "face/face_landmarks.h"
#include "platform/image/image.h"

#include <QObject>
#include <QString>

#include <array>
#include <functional>
#include <optional>
#include <thread>

namespace plyra {

class MorphDocument;

/// Edit ▸ Add Face Lines: finds the face in each of the document's two images and adds the
/// lines that pair them, selected, as one undo step "Add Face Lines". Existing lines stay
/// as they are. The faces are found off the main thread; the status says what happens.
/// Threads: main thread; the finder runs on a worker thread, one run at a time, and its
/// result comes back through the event loop. A result for images the document no longer
/// has is dropped.
class FaceLinesCommand : public QObject {
    Q_OBJECT

public:
    /// Finds the landmarks of the most prominent face of an image (on a worker thread).
    using FaceFinder = std::function<std::optional<FaceLandmarks>(const Image&)>;
    /// Runs a job off the main thread; the job may post back to this object.
    using Runner = std::function<void(std::function<void()>)>;

    /// With the installed face networks and a worker thread of its own.
    explicit FaceLinesCommand(MorphDocument& document, QObject* parent = nullptr);
    FaceLinesCommand(MorphDocument& document, FaceFinder finder, Runner runner, QObject* parent = nullptr);
    ~FaceLinesCommand() override;

    /// Whether this build has the face networks (looked up once).
    static bool isAvailable();
    bool isRunning() const { return m_running; }
    void run();

signals:
    void statusChanged(const QString& message);
    void runningChanged(bool running);

private:
    using Faces = std::array<std::optional<FaceLandmarks>, 2>;
    void finish(const std::array<Image, 2>& images, const Faces& faces);
    void addLines(const Faces& faces);
    void runOnWorker(std::function<void()> job);

    MorphDocument& m_document;
    FaceFinder m_finder;
    Runner m_runner;
    std::thread m_worker;
    bool m_running = false;
};

} // namespace plyra
