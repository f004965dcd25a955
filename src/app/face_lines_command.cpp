// SPDX-License-Identifier: MIT
#include "app/face_lines_command.h"

#include "face/face_lines.h"
#include "model/morph_document.h"

#include <exception>

namespace plyra {

FaceLinesCommand::FaceLinesCommand(MorphDocument& document, FaceFinder finder, Runner runner, QObject* parent)
    : QObject(parent)
    , m_document(document)
    , m_finder(std::move(finder))
    , m_runner(runner ? std::move(runner) : [this](std::function<void()> job) { runOnWorker(std::move(job)); })
{
}

FaceLinesCommand::~FaceLinesCommand()
{
    // The worker refers to this object: it stops at its next step (between looks at
    // parts of the picture), so closing a window does not wait for a whole search.
    m_stopping = true;
    if (m_worker.joinable())
        m_worker.join();
}

void FaceLinesCommand::runOnWorker(std::function<void()> job)
{
    if (m_worker.joinable())
        m_worker.join();
    m_worker = std::thread(std::move(job));
}

void FaceLinesCommand::run()
{
    if (m_running)
        return;
    const std::array<Image, 2> images{m_document.ciimageInTrack(0), m_document.ciimageInTrack(1)};
    m_running = true;
    emit runningChanged(true);
    emit statusChanged(tr("Finding the faces…"));
    m_runner([this, images] {
        const Result result = search(images);
        QMetaObject::invokeMethod(this, [this, result] { finish(result); }, Qt::QueuedConnection);
    });
}

FaceLinesCommand::Result FaceLinesCommand::search(const std::array<Image, 2>& images) const
{
    Result result{images, {}, {}};
    const Stop stop = [this] { return m_stopping.load(); };
    // OpenCV's errors and failed allocations end the search, not the program.
    try {
        for (std::size_t track = 0; track < 2; ++track) {
            if (!images[track].isNull())
                result.faces[track] = m_finder(images[track], stop);
        }
    } catch (const std::exception& e) {
        result.faces = {};
        result.error = QString::fromLocal8Bit(e.what());
    }
    return result;
}

void FaceLinesCommand::stopRunning()
{
    m_running = false;
    emit runningChanged(false);
}

void FaceLinesCommand::finish(const Result& result)
{
    if (result.images[0] != m_document.ciimageInTrack(0) || result.images[1] != m_document.ciimageInTrack(1)) {
        stopRunning();
        emit statusChanged(tr("The images changed while the faces were searched; no lines were added."));
    } else if (!result.error.isEmpty()) {
        stopRunning();
        emit statusChanged(tr("The faces could not be searched: %1").arg(result.error));
    } else if (!result.faces[0] || !result.faces[1]) {
        stopRunning();
        emit statusChanged(!result.faces[0] ? tr("No face found in the first image.") : tr("No face found in the last image."));
    } else {
        m_waiting = result;
        if (m_beforeAdding)
            m_beforeAdding();
        if (m_document.undoManager().groupingLevel() > 0)
            emit statusChanged(tr("The face lines are added when the current change ends."));
        addWaitingLines();
    }
}

void FaceLinesCommand::addWaitingLines()
{
    if (!m_waiting || m_document.undoManager().groupingLevel() > 0)
        return;
    const Result result = *std::exchange(m_waiting, std::nullopt);
    stopRunning();
    if (result.images[0] != m_document.ciimageInTrack(0) || result.images[1] != m_document.ciimageInTrack(1))
        emit statusChanged(tr("The images changed while the faces were searched; no lines were added."));
    else
        addLines(result.faces);
}

void FaceLinesCommand::addLines(const Faces& faces)
{
    const std::vector<MorphLine::Ptr> lines = faceLines(*faces[0], *faces[1]);
    // All of it happens in this pass of the event loop, so it is one undo step.
    for (const MorphLine::Ptr& line : lines)
        m_document.addMorphLine(line);
    m_document.setSelectedLines(lines);
    m_document.undoManager().setActionName("Add Face Lines");
    emit statusChanged(tr("Added %1 face lines.").arg(lines.size()));
}

} // namespace plyra
