// SPDX-License-Identifier: MIT
#include "app/face_lines_command.h"

#include "face/face_landmarker.h"
#include "face/face_lines.h"
#include "model/morph_document.h"

#include <memory>

namespace plyra {
namespace {

// The networks load on the worker at the first run and stay for the next.
FaceLinesCommand::FaceFinder installedFinder()
{
    auto landmarker = std::make_shared<std::unique_ptr<FaceLandmarker>>();
    return [landmarker](const Image& image) -> std::optional<FaceLandmarks> {
        if (!*landmarker)
            *landmarker = FaceLandmarker::create();
        return *landmarker ? (*landmarker)->find(image) : std::nullopt;
    };
}

} // namespace

FaceLinesCommand::FaceLinesCommand(MorphDocument& document, QObject* parent)
    : FaceLinesCommand(document, installedFinder(), nullptr, parent)
{
}

FaceLinesCommand::FaceLinesCommand(MorphDocument& document, FaceFinder finder, Runner runner, QObject* parent)
    : QObject(parent)
    , m_document(document)
    , m_finder(std::move(finder))
    , m_runner(runner ? std::move(runner) : [this](std::function<void()> job) { runOnWorker(std::move(job)); })
{
}

FaceLinesCommand::~FaceLinesCommand()
{
    // The worker refers to this object; the networks take a fraction of a second.
    if (m_worker.joinable())
        m_worker.join();
}

bool FaceLinesCommand::isAvailable()
{
    // The networks are installed with the program; one look is enough.
    static const bool available = FaceModelFiles::find().has_value();
    return available;
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
        Faces faces;
        for (std::size_t track = 0; track < 2; ++track) {
            if (!images[track].isNull())
                faces[track] = m_finder(images[track]);
        }
        QMetaObject::invokeMethod(this, [this, images, faces] { finish(images, faces); }, Qt::QueuedConnection);
    });
}

void FaceLinesCommand::finish(const std::array<Image, 2>& images, const Faces& faces)
{
    m_running = false;
    emit runningChanged(false);
    if (images[0] != m_document.ciimageInTrack(0) || images[1] != m_document.ciimageInTrack(1))
        emit statusChanged(tr("The images changed while the faces were searched; no lines were added."));
    else if (!faces[0])
        emit statusChanged(tr("No face found in the first image."));
    else if (!faces[1])
        emit statusChanged(tr("No face found in the last image."));
    else
        addLines(faces);
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
