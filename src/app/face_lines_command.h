// SPDX-License-Identifier: MIT
#pragma once

#include "face/face_landmarks.h"
#include "platform/image/image.h"

#include <QObject>
#include <QString>

#include <array>
#include <atomic>
#include <functional>
#include <optional>
#include <thread>

namespace plyra {

class MorphDocument;

/// Edit ▸ Add Face Lines: finds the face in each of the document's two images and adds the
/// lines that pair them, selected, as one undo step "Add Face Lines". Existing lines stay
/// as they are. The faces are found off the main thread; the status says what happens.
/// Before adding, the window ends its gestures (setBeforeAdding); while an undo group is
/// still open (a drag in the inspector) the lines wait for addWaitingLines() after it
/// closes, so that they never become part of another step.
/// Threads: main thread; the finder runs on a worker thread, one run at a time, and its
/// result comes back through the event loop. A result for images the document no longer
/// has is dropped. Destroying the command stops the search and waits for the worker.
class FaceLinesCommand : public QObject {
    Q_OBJECT

public:
    /// Asked by the finder between the steps of a search; true ends it.
    using Stop = std::function<bool()>;
    /// Finds the landmarks of the most prominent face of an image (on a worker thread);
    /// throws a std::exception whose what() says why when it cannot search.
    using FaceFinder = std::function<std::optional<FaceLandmarks>(const Image&, const Stop&)>;
    /// Runs a job off the main thread; the job may post back to this object.
    using Runner = std::function<void(std::function<void()>)>;

    /// With no runner, the command runs the finder on a worker thread of its own.
    FaceLinesCommand(MorphDocument& document, FaceFinder finder, Runner runner = nullptr, QObject* parent = nullptr);
    ~FaceLinesCommand() override;

    /// Called on the main thread right before the lines are added.
    void setBeforeAdding(std::function<void()> hook) { m_beforeAdding = std::move(hook); }
    bool isRunning() const { return m_running; }
    void run();
    /// Adds the lines of a result that waited for an undo group to close, if it is closed now.
    void addWaitingLines();

signals:
    void statusChanged(const QString& message);
    void runningChanged(bool running);

private:
    using Faces = std::array<std::optional<FaceLandmarks>, 2>;
    struct Result {
        std::array<Image, 2> images;
        Faces faces;
        QString error;
    };
    Result search(const std::array<Image, 2>& images) const;
    void finish(const Result& result);
    void stopRunning();
    void addLines(const Faces& faces);
    void runOnWorker(std::function<void()> job);

    MorphDocument& m_document;
    FaceFinder m_finder;
    Runner m_runner;
    std::function<void()> m_beforeAdding;
    std::thread m_worker;
    std::atomic<bool> m_stopping{false};
    bool m_running = false;
    std::optional<Result> m_waiting;
};

} // namespace plyra
