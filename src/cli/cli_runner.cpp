// SPDX-License-Identifier: MIT
#include "cli/cli_runner.h"

#include "cli/new_document.h"
#include "cli/progress_bar.h"
#include "cli/warp_field_writer.h"
#include "model/morph_document.h"
#include "platform/stop_request.h"
#include "render/document_movie_settings.h"
#include "render/document_summary.h"
#include "render/frame_render_controller.h"
#include "render/movie_render_controller.h"
#include "render/output_path_check.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>

#include <chrono>
#include <ostream>
#include <thread>
#include <unistd.h>

namespace plyra {
namespace {

using Clock = std::chrono::steady_clock;
constexpr auto kPollInterval = std::chrono::milliseconds(2);

int fail(std::ostream& err, const std::string& message)
{
    err << "plyra-render: " << message << "\n";
    return kExitFailure;
}

int interrupted(std::ostream& err)
{
    err << "plyra-render: interrupted; nothing was written\n";
    return kExitInterrupted;
}

std::string quoted(const QString& path)
{
    return "'" + path.toStdString() + "'";
}

bool openDocument(const CliOptions& options, MorphDocument& document, std::ostream& err)
{
    const QString path = QString::fromStdString(options.documentPath);
    if (!QFileInfo(path).isDir()) {
        fail(err, "cannot open document '" + options.documentPath + "': not a document package (a folder)");
        return false;
    }
    QString reason;
    if (!document.readFromFile(path, &reason)) {
        fail(err, "cannot open document '" + options.documentPath + "': " + reason.toStdString());
        return false;
    }
    return true;
}

// An image the document names but cannot read is an error for anything that renders;
// a missing file is how a document without that image is stored, and only noted.
int checkImages(const MorphDocument& document, std::ostream& err)
{
    static const char* const names[2] = {"the first image", "the last image"};
    for (unsigned track = 0; track < 2; ++track) {
        const std::optional<ImageLoadFailure> failure = document.imageFailureInTrack(track);
        if (!failure || failure->problem == FileProblem::Missing)
            continue;
        if (failure->problem == FileProblem::Interrupted)
            return interrupted(err);
        return fail(err, std::string("cannot read ") + names[track] + " " + quoted(document.imageURLInTrack(track)) + ": "
                             + failure->reason.toStdString());
    }
    return kExitSuccess;
}

int noImageToRender(const MorphDocument& document, std::ostream& err)
{
    if (StopRequest::isRequested())
        return interrupted(err);
    if (const int status = checkImages(document, err); status != kExitSuccess)
        return status;
    return fail(err, "the document has no image to render");
}

// Whether output may go to path; target becomes the file to write.
bool checkOutput(const MorphDocument& document, const QString& path, QString& target, std::ostream& err)
{
    QString reason;
    if (checkOutputPath(document, path, &target, &reason))
        return true;
    fail(err, "cannot write " + quoted(path) + ": " + reason.toStdString());
    return false;
}

void applyCommonSettings(const CliOptions& options, RenderController& controller)
{
    if (options.width && options.height)
        controller.settings().setFrameSize({*options.width, *options.height});
    if (options.interval)
        controller.setInterpolationFactor(options.interval);
}

// Polls the controller until its render is over; false when interrupted first.
bool runToEnd(RenderController& controller, ProgressBar* bar)
{
    while (!controller.tick()) {
        if (StopRequest::isRequested()) {
            controller.stop();
            return false;
        }
        if (bar)
            bar->show(controller.progress());
        std::this_thread::sleep_for(kPollInterval);
    }
    return !StopRequest::isRequested();
}

// Beside the working folder, named after the package: "plyra-render ." inside a package
// is then refused rather than writing into it.
QString defaultFramePath(const CliOptions& options)
{
    const QDir package(QString::fromStdString(options.documentPath));
    return QFileInfo(package.canonicalPath()).completeBaseName() + QStringLiteral(".jpg");
}

int renderFrame(const CliOptions& options, MorphDocument& document, std::ostream& out, std::ostream& err)
{
    const QString path = options.outputPath.empty() ? defaultFramePath(options) : QString::fromStdString(options.outputPath);
    QString target;
    if (!checkOutput(document, path, target, err))
        return kExitFailure;
    FrameRenderController controller(document);
    applyCommonSettings(options, controller);
    controller.setTime(options.time.value_or(0.5f));
    if (!controller.frameSize().isSet())
        return fail(err, "the document has no frame size; give one with --size WxH");
    if (!controller.recalc())
        return noImageToRender(document, err);
    if (!runToEnd(controller, nullptr))
        return interrupted(err);
    QString reason;
    if (!controller.saveRenderedFrame(path, &reason))
        return fail(err, "cannot write " + quoted(path) + ": " + reason.toStdString());
    if (!options.quiet)
        out << "plyra-render: wrote " << path.toStdString() << " (" << controller.bitmap()->width() << "x"
            << controller.bitmap()->height() << ", time " << controller.time() << ")\n";
    return kExitSuccess;
}

// The document's movie, with what the command line says instead for this run.
void applyMovieOptions(const CliOptions& options, MovieRenderController& controller)
{
    MovieSettings movie = documentMovieSettings(controller.document());
    movie.numberOfFrames = options.frames.value_or(movie.numberOfFrames);
    movie.framesPerSecond = options.framesPerSecond.value_or(movie.framesPerSecond);
    movie.rangeLocation = options.rangeLocation.value_or(movie.rangeLocation);
    movie.rangeLength = options.rangeLength.value_or(movie.rangeLength);
    movie.reverse = movie.reverse || options.reverse;
    movie.timing.easing = options.easing.value_or(movie.timing.easing);
    movie.timing.holdStart = options.holdStart.value_or(movie.timing.holdStart);
    movie.timing.holdEnd = options.holdEnd.value_or(movie.timing.holdEnd);
    movie.timing.pingPong = movie.timing.pingPong || options.pingPong;
    applyMovieSettings(movie, controller);
    controller.setCodec(options.codec);
    controller.setQuality(options.quality);
    // Nothing waits for an interface here: append as much as is finished.
    controller.setAppendBudget(std::chrono::milliseconds(1000));
}

int renderMovie(const CliOptions& options, MorphDocument& document, std::ostream& out, std::ostream& err)
{
    const QString path = QString::fromStdString(options.outputPath);
    QString target;
    if (!checkOutput(document, path, target, err))
        return kExitFailure;
    MovieRenderController controller(document);
    applyMovieOptions(options, controller);
    applyCommonSettings(options, controller);
    if (QString reason; !controller.setOutputPath(path, &reason))
        return fail(err, reason.toStdString());
    if (!controller.frameSize().isSet())
        return fail(err, "the document has no frame size; give one with --size WxH");
    const Clock::time_point start = Clock::now();
    if (!controller.recalc()) {
        if (document.ciimageInTrack(0).isNull() && document.ciimageInTrack(1).isNull())
            return noImageToRender(document, err);
        return fail(err, controller.errorString().toStdString());
    }
    std::unique_ptr<ProgressBar> bar;
    if (!options.quiet && isatty(STDERR_FILENO))
        bar = std::make_unique<ProgressBar>(err);
    const bool finished = runToEnd(controller, bar.get());
    if (bar)
        bar->finish();
    if (!finished)
        return interrupted(err);
    QString reason;
    if (!controller.saveRenderedMovie(path, &reason))
        return fail(err, "cannot write " + quoted(path) + ": " + reason.toStdString());
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    if (!options.quiet)
        out << formatSummary(controller.framesAppended(), seconds, options.outputPath) << "\n";
    return kExitSuccess;
}

int writeFrameWarpField(const CliOptions& options, MorphDocument& document, std::ostream& err)
{
    const QString path = QString::fromStdString(options.outputPath);
    QString target;
    if (!checkOutput(document, path, target, err))
        return kExitFailure;
    // The frame size and grid spacing follow the same rules as a rendered frame's.
    FrameRenderController frame(document);
    applyCommonSettings(options, frame);
    const FrameSize size = frame.frameSize();
    if (!size.isSet())
        return fail(err, "the document has no frame size; give one with --size WxH");
    std::string reason;
    if (!writeWarpField(document.morphLines(), options.time.value_or(0.5f), {size.width, size.height},
            frame.interpolationFactor(), target.toStdString(), &reason))
        return fail(err, "cannot write " + quoted(path) + ": " + reason);
    return kExitSuccess;
}

int printInfo(const MorphDocument& document, std::ostream& out)
{
    out << QJsonDocument(documentSummary(document)).toJson(QJsonDocument::Indented).toStdString();
    return kExitSuccess;
}

} // namespace

int runCli(const CliOptions& options, std::ostream& out, std::ostream& err)
{
    if (options.mode == CliMode::NewDocument)
        return runNewDocument(options, out, err);
    MorphDocument document;
    if (!openDocument(options, document, err))
        return StopRequest::isRequested() ? interrupted(err) : kExitFailure;
    if (StopRequest::isRequested())
        return interrupted(err);
    if (options.mode == CliMode::Info)
        return printInfo(document, out);
    if (const int status = checkImages(document, err); status != kExitSuccess)
        return status;
    switch (options.mode) {
    case CliMode::Movie:
        return renderMovie(options, document, out, err);
    case CliMode::WarpField:
        return writeFrameWarpField(options, document, err);
    case CliMode::Info:
    case CliMode::NewDocument:
    case CliMode::Frame:
    case CliMode::Help:
        break;
    }
    return renderFrame(options, document, out, err);
}

} // namespace plyra
