// SPDX-License-Identifier: MIT
#include "cli/cli_options.h"

#include "platform/number_text.h"
#include "render/movie_output.h"

#include <cmath>
#include <functional>
#include <map>

namespace plyra {
namespace {

bool parseFloat(const std::string& text, float& value)
{
    double d = 0.0;
    if (text.empty() || readLeadingNumber(text, d) != text.size() || !std::isfinite(d))
        return false;
    // A number beyond the float range (1e40) would become infinite on the way.
    value = static_cast<float>(d);
    return std::isfinite(value);
}

bool parseInteger(const std::string& text, std::int64_t& value)
{
    if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos || text.size() > 9)
        return false;
    value = std::stoll(text);
    return true;
}

// Reads the option values into the options; answers an error text or "".
class OptionReader {
public:
    explicit OptionReader(CliOptions& options)
        : m_o(options)
    {
    }

    std::string read(const std::string& name, const std::string& value)
    {
        const auto it = handlers().find(name);
        return it == handlers().end() ? "unknown option " + name : it->second(*this, value);
    }

    static bool takesValue(const std::string& name) { return handlers().count(name) > 0; }

private:
    using Handler = std::function<std::string(OptionReader&, const std::string&)>;

    static const std::map<std::string, Handler>& handlers()
    {
        static const std::map<std::string, Handler> table{
            {"-o", [](OptionReader& r, const std::string& v) { return r.output(v); }},
            {"--time", [](OptionReader& r, const std::string& v) { return r.number(v, "--time", r.m_o.time); }},
            {"--frames", [](OptionReader& r, const std::string& v) { return r.frames(v); }},
            {"--fps", [](OptionReader& r, const std::string& v) { return r.positive(v, "--fps", r.m_o.framesPerSecond); }},
            {"--range", [](OptionReader& r, const std::string& v) { return r.range(v); }},
            {"--ease", [](OptionReader& r, const std::string& v) { return r.ease(v); }},
            {"--hold", [](OptionReader& r, const std::string& v) { return r.hold(v); }},
            {"--codec", [](OptionReader& r, const std::string& v) { return r.codec(v); }},
            {"--quality", [](OptionReader& r, const std::string& v) { return r.quality(v); }},
            {"--size", [](OptionReader& r, const std::string& v) { return r.size(v); }},
            {"--interval", [](OptionReader& r, const std::string& v) { return r.positive(v, "--interval", r.m_o.interval); }},
            {"--warp-field", [](OptionReader& r, const std::string& v) { return r.warpField(v); }},
        };
        return table;
    }

    std::string output(const std::string& v)
    {
        if (v.empty())
            return "-o needs a file name";
        m_o.outputPath = v;
        return {};
    }
    std::string number(const std::string& v, const char* name, std::optional<float>& target)
    {
        float f = 0;
        if (!parseFloat(v, f))
            return std::string(name) + " needs a number, not '" + v + "'";
        target = f;
        return {};
    }
    std::string positive(const std::string& v, const char* name, std::optional<float>& target)
    {
        float f = 0;
        if (!parseFloat(v, f) || !(f > 0))
            return std::string(name) + " needs a number above 0, not '" + v + "'";
        target = f;
        return {};
    }
    std::string frames(const std::string& v)
    {
        std::int64_t n = 0;
        if (!parseInteger(v, n) || n < 1 || n > 1000000)
            return "--frames needs a whole number from 1 to 1000000, not '" + v + "'";
        m_o.frames = static_cast<std::uint32_t>(n);
        return {};
    }
    std::string range(const std::string& v)
    {
        const auto comma = v.find(',');
        float l = 0;
        float d = 0;
        if (comma == std::string::npos || !parseFloat(v.substr(0, comma), l) || !parseFloat(v.substr(comma + 1), d))
            return "--range needs LOCATION,LENGTH, not '" + v + "'";
        m_o.rangeLocation = l;
        m_o.rangeLength = d;
        return {};
    }
    std::string ease(const std::string& v)
    {
        static const std::map<std::string, Easing> names{
            {"linear", Easing::Linear}, {"in", Easing::EaseIn}, {"out", Easing::EaseOut}, {"in-out", Easing::EaseInOut}};
        const auto found = names.find(v);
        if (found == names.end())
            return "--ease needs linear, in, out or in-out, not '" + v + "'";
        m_o.easing = found->second;
        return {};
    }
    std::string hold(const std::string& v)
    {
        const auto comma = v.find(',');
        float start = 0;
        float end = 0;
        if (comma == std::string::npos || !parseFloat(v.substr(0, comma), start) || !parseFloat(v.substr(comma + 1), end)
            || start < 0 || end < 0 || start > 3600 || end > 3600)
            return "--hold needs START,END in seconds (0 to 3600), not '" + v + "'";
        m_o.holdStart = start;
        m_o.holdEnd = end;
        return {};
    }
    std::string codec(const std::string& v)
    {
        if (v.size() != 4)
            return "--codec needs a four-character code such as mp4v, avc1, mjpb, pxlt or 'rle ', not '" + v + "'";
        m_o.codec = v;
        return {};
    }
    std::string quality(const std::string& v)
    {
        std::int64_t q = 0;
        if (!parseInteger(v, q) || q > 1023)
            return "--quality needs a whole number from 0 to 1023, not '" + v + "'";
        m_o.quality = static_cast<int>(q);
        return {};
    }
    std::string size(const std::string& v)
    {
        const auto x = v.find_first_of("xX");
        float w = 0;
        float h = 0;
        if (x == std::string::npos || !parseFloat(v.substr(0, x), w) || !parseFloat(v.substr(x + 1), h)
            || !(w >= 1 && h >= 1 && w <= 16384 && h <= 16384))
            return "--size needs WIDTHxHEIGHT in pixels (1 to 16384), not '" + v + "'";
        m_o.width = w;
        m_o.height = h;
        return {};
    }
    std::string warpField(const std::string& v)
    {
        if (v.empty())
            return "--warp-field needs a file name";
        m_o.outputPath = v;
        m_o.mode = CliMode::WarpField;
        return {};
    }

    CliOptions& m_o;
};

bool hasMovieOptions(const CliOptions& o)
{
    return o.frames || o.framesPerSecond || o.rangeLocation || o.reverse || o.codec || o.quality || o.easing
        || o.holdStart || o.pingPong;
}

std::string checkMovie(CliOptions& o, MovieOutputKind kind)
{
    if (o.time)
        return "--time is for a single frame; a movie takes --range";
    const bool compressed = kind == MovieOutputKind::QuickTime || kind == MovieOutputKind::Mpeg4 || kind == MovieOutputKind::WebM;
    if (o.codec && !compressed)
        return "--codec is for movies (.mov, .mp4, .webm)";
    if (o.quality && !compressed && kind != MovieOutputKind::AnimatedWebP)
        return "--quality is for movies (.mov, .mp4, .webm) and animated WebP (.webp)";
    o.mode = CliMode::Movie;
    return {};
}

std::string checkNewDocument(const CliOptions& o)
{
    if (!o.documentPath.empty())
        return "--new makes a document and reads none: '" + o.documentPath + "'";
    if (!o.outputPath.empty() && !QString::fromStdString(o.outputPath).endsWith(QStringLiteral(".plyra")))
        return "--new writes a document package: -o needs a name ending in .plyra, not '" + o.outputPath + "'";
    if (o.outputPath.empty())
        return "--new needs -o DOC.plyra";
    if (o.time || hasMovieOptions(o) || o.width || o.interval)
        return "--new takes only -o, --face-lines and --quiet";
    return {};
}

std::string checkMode(CliOptions& o)
{
    if (o.faceLines && o.mode != CliMode::NewDocument)
        return "--face-lines is for --new";
    if (o.mode == CliMode::NewDocument)
        return checkNewDocument(o);
    if (o.mode == CliMode::WarpField || o.mode == CliMode::Info)
        return {};
    if (o.outputPath.empty())
        return {};
    const QString path = QString::fromStdString(o.outputPath);
    const bool sequence = ImageSequencePattern::looksLikePattern(path);
    if (!sequence && frameFileFormatForPath(path)) {
        if (hasMovieOptions(o))
            return "--frames, --fps, --range, --reverse, --ease, --hold, --ping-pong, --codec and --quality are for movies "
                   "(.mov, .mp4, .webm, .gif, .webp or numbered frames)";
        o.mode = CliMode::Frame;
        return {};
    }
    QString reason;
    if (const std::optional<MovieOutputKind> kind = movieOutputKindForPath(path, &reason))
        return checkMovie(o, *kind);
    if (sequence)
        return reason.toStdString();
    return "the output must end in .jpg, .jpeg, .png, .tif, .tiff (a frame), .mov, .mp4, .webm, .gif or .webp (a movie), "
           "or name numbered frames such as NAME_%04d.png: '" + o.outputPath + "'";
}

// The options without a value.
std::map<std::string, std::reference_wrapper<bool>> flags(CliOptions& options, bool& info)
{
    return {{"--reverse", options.reverse}, {"--ping-pong", options.pingPong}, {"--quiet", options.quiet}, {"--info", info},
            {"--face-lines", options.faceLines}};
}

} // namespace

CliParseResult parseCliOptions(const std::vector<std::string>& arguments)
{
    CliOptions options;
    OptionReader reader(options);
    bool info = false;
    const auto flagOptions = flags(options, info);
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& arg = arguments[i];
        if (arg == "-h" || arg == "--help") {
            options.mode = CliMode::Help;
            return {options, {}};
        }
        if (const auto flag = flagOptions.find(arg); flag != flagOptions.end()) {
            flag->second.get() = true;
            continue;
        }
        if (arg == "--new") {
            if (i + 2 >= arguments.size())
                return {std::nullopt, "--new needs a first and a last image"};
            options.mode = CliMode::NewDocument;
            options.firstImagePath = arguments[++i];
            options.lastImagePath = arguments[++i];
            continue;
        }
        if (OptionReader::takesValue(arg)) {
            if (i + 1 >= arguments.size())
                return {std::nullopt, arg + " needs a value"};
            if (std::string error = reader.read(arg, arguments[++i]); !error.empty())
                return {std::nullopt, error};
            continue;
        }
        if (!arg.empty() && arg[0] == '-')
            return {std::nullopt, "unknown option " + arg};
        if (!options.documentPath.empty())
            return {std::nullopt, "only one document, please: '" + arg + "'"};
        options.documentPath = arg;
    }
    if (options.documentPath.empty() && options.mode != CliMode::NewDocument)
        return {std::nullopt, "no document given"};
    if (info) {
        if (options.mode == CliMode::WarpField || options.mode == CliMode::NewDocument || !options.outputPath.empty())
            return {std::nullopt, "--info prints the document and takes no output"};
        options.mode = CliMode::Info;
    }
    if (std::string error = checkMode(options); !error.empty())
        return {std::nullopt, error};
    return {options, {}};
}

std::string cliUsage()
{
    return "usage:\n"
           "  plyra-render DOC.plyra [-o FRAME.jpg] [--time T]                     one frame (default time 0.5)\n"
           "  plyra-render DOC.plyra -o MOVIE.mov [MOVIE OPTIONS] [--codec CODE] [--quality Q]\n"
           "                                                   a movie: .mov, .mp4 (H.264) or .webm (VP9)\n"
           "  plyra-render DOC.plyra -o MOVIE.gif [MOVIE OPTIONS]          an animated GIF (.webp: WebP, with --quality)\n"
           "  plyra-render DOC.plyra -o DIR/NAME_%04d.png [MOVIE OPTIONS]           numbered frames\n"
           "  plyra-render DOC.plyra --info                                         the document as JSON\n"
           "  plyra-render DOC.plyra --time T --warp-field FIELD                    one frame's warp field\n"
           "  plyra-render --new FIRST-IMAGE LAST-IMAGE -o DOC.plyra [--face-lines] a new document (with face lines)\n"
           "movie options, each overriding the document's movie settings for this run:\n"
           "  [--frames N] [--fps F] [--range L,D] [--reverse] [--ease linear|in|out|in-out]\n"
           "  [--hold START,END] (seconds on the first and last image) [--ping-pong] (forth and back)\n"
           "common: [--size WxH] [--interval R] [--quiet]\n"
           "frames: .jpg or .jpeg (quality 95), .png (8-bit RGB or RGBA with alpha), .tif or .tiff (lossless)\n"
           "codecs: mp4v (default of new documents), avc1, mjpb, 'rle ' and pxlt always work; any other code\n"
           "        that FFmpeg writes into a QuickTime movie (jpeg, png ...) too; quality 0 to 1023\n";
}

} // namespace plyra
