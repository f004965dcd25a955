// SPDX-License-Identifier: MIT
#include "cli/cli_runner.h"

#include "cli/progress_bar.h"
#include "cli/warp_field_writer.h"
#include "model/morph_document.h"
#include "render/document_summary.h"
#include "render/frame_render_controller.h"
#include "render/movie_render_controller.h"

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

void applyCommonSettings(const CliOptions& options, RenderController& controller)
{
    if (options.width && options.height)
        controller.settings().setFrameSize({*options.width, *options.height});
    if (options.interval)
        controller.setInterpolationFactor(options.interval);
}

// Polls the controller until its render is over; false when interrupted first.
bool runToEnd(RenderController& controller, const std::atomic<bool>& interrupted, ProgressBar* bar)
{
    while (!controller.tick()) {
        if (interrupted) {
            controller.stop();
            return false;
        }
        if (bar)
            bar->show(controller.progress());
        std::this_thread::sleep_for(kPollInterval);
    }
    return true;
}

std::string defaultFramePath(const CliOptions& options)
{
    const QFileInfo document(QString::fromStdString(options.documentPath));
    return document.completeBaseName().toStdString() + ".jpg";
}

int renderFrame(const CliOptions& options, MorphDocument& document, std::ostream& out, std::ostream& err,
    const std::atomic<bool>& interrupted)
{
    FrameRenderController controller(document);
    applyCommonSettings(options, controller);
    controller.setTime(options.time.value_or(0.5f));
    if (!controller.frameSize().isSet())
        return fail(err, "the document has no frame size; give one with --size WxH");
    if (!controller.recalc())
        return fail(err, "the document has no image to render");
    if (!runToEnd(controller, interrupted, nullptr)) {
        fail(err, "interrupted; nothing was written");
        return kExitInterrupted;
    }
    const std::string path = options.outputPath.empty() ? defaultFramePath(options) : options.outputPath;
    QString reason;
    if (!controller.saveRenderedFrame(QString::fromStdString(path), &reason))
        return fail(err, "cannot write '" + path + "': " + reason.toStdString());
    if (!options.quiet)
        out << "plyra-render: wrote " << path << " (" << controller.bitmap()->width() << "x"
            << controller.bitmap()->height() << ", time " << controller.time() << ")\n";
    return kExitSuccess;
}

void applyMovieSettings(const CliOptions& options, MovieRenderController& controller)
{
    RenderSettings& settings = controller.settings();
    settings.setNumberOfFrames(options.frames.value_or(20));
    settings.setFramesPerSecond(options.framesPerSecond.value_or(20.0f));
    settings.setTimeRange({options.rangeLocation.value_or(0.0f), options.rangeLength.value_or(1.0f)});
    settings.setReverse(options.reverse);
    controller.setCodec(options.codec);
    controller.setQuality(options.quality);
    // Nothing waits for an interface here: append as much as is finished.
    controller.setAppendBudget(std::chrono::milliseconds(1000));
}

int renderMovie(const CliOptions& options, MorphDocument& document, std::ostream& out, std::ostream& err,
    const std::atomic<bool>& interrupted)
{
    MovieRenderController controller(document);
    applyCommonSettings(options, controller);
    applyMovieSettings(options, controller);
    if (!controller.frameSize().isSet())
        return fail(err, "the document has no frame size; give one with --size WxH");
    const Clock::time_point start = Clock::now();
    if (!controller.recalc())
        return fail(err, controller.morpher() ? "cannot make the temporary movie under /tmp"
                                              : "the document has no image to render");
    std::unique_ptr<ProgressBar> bar;
    if (!options.quiet && isatty(STDERR_FILENO))
        bar = std::make_unique<ProgressBar>(err);
    const bool finished = runToEnd(controller, interrupted, bar.get());
    if (bar)
        bar->finish();
    if (!finished) {
        fail(err, "interrupted; nothing was written");
        return kExitInterrupted;
    }
    QString reason;
    if (!controller.saveRenderedMovie(QString::fromStdString(options.outputPath), &reason))
        return fail(err, "cannot write '" + options.outputPath + "': " + reason.toStdString());
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    if (!options.quiet)
        out << formatSummary(controller.framesAppended(), seconds, options.outputPath) << "\n";
    return kExitSuccess;
}

int writeFrameWarpField(const CliOptions& options, MorphDocument& document, std::ostream& err)
{
    // The frame size and grid spacing follow the same rules as a rendered frame's.
    FrameRenderController frame(document);
    applyCommonSettings(options, frame);
    const FrameSize size = frame.frameSize();
    if (!size.isSet())
        return fail(err, "the document has no frame size; give one with --size WxH");
    std::string reason;
    if (!writeWarpField(document.morphLines(), options.time.value_or(0.5f), {size.width, size.height},
            frame.interpolationFactor(), options.outputPath, &reason))
        return fail(err, "cannot write '" + options.outputPath + "': " + reason);
    return kExitSuccess;
}

int printInfo(const MorphDocument& document, std::ostream& out)
{
    out << QJsonDocument(documentSummary(document)).toJson(QJsonDocument::Indented).toStdString();
    return kExitSuccess;
}

} // namespace

int runCli(const CliOptions& options, std::ostream& out, std::ostream& err, const std::atomic<bool>& interrupted)
{
    MorphDocument document;
    if (!openDocument(options, document, err))
        return kExitFailure;
    switch (options.mode) {
    case CliMode::Info:
        return printInfo(document, out);
    case CliMode::Movie:
        return renderMovie(options, document, out, err, interrupted);
    case CliMode::WarpField:
        return writeFrameWarpField(options, document, err);
    case CliMode::Frame:
    case CliMode::Help:
        break;
    }
    return renderFrame(options, document, out, err, interrupted);
}

} // namespace plyra
