// SPDX-License-Identifier: MIT
#pragma once

#include "platform/movie/movie.h"

#include <cstdio>
#include <filesystem>
#include <map>
#include <string>
#include <unistd.h>

namespace plyra::test {

/// A frame with a gradient, a moving square and fine texture, so that codecs have detail
/// to spend quality on. Opaque unless `alpha` is below 255 (then premultiplied).
inline RgbaImage movieTestFrame(int index, int width = 64, int height = 48, uint8_t alpha = 255)
{
    RgbaImage image(width, height);
    uint32_t noise = 12345u + static_cast<uint32_t>(index) * 7919u;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            noise = noise * 1664525u + 1013904223u;
            const bool square = x >= index * 2 % width && x < index * 2 % width + 12 && y >= 10 && y < 22;
            const int texture = static_cast<int>(noise >> 27);
            uint8_t* p = image.pixel(x, y);
            p[0] = static_cast<uint8_t>(square ? 230 : x * 255 / width);
            p[1] = static_cast<uint8_t>(square ? 40 : (y * 255 / height + texture) & 0xff);
            p[2] = static_cast<uint8_t>(square ? 60 : (128 + texture * 3) & 0xff);
            p[3] = alpha;
            for (int c = 0; c < 3; ++c)
                p[c] = static_cast<uint8_t>((p[c] * alpha + 127) / 255);
        }
    }
    return image;
}

/// A folder under the system's temporary folder, removed with everything in it.
class ScratchFolder {
public:
    ScratchFolder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "plyra_movie_test_XXXXXX").string();
        m_path = ::mkdtemp(pattern.data()) ? pattern : std::string();
    }
    ~ScratchFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    std::string file(const std::string& name) const { return m_path + "/" + name; }
    const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

/// What ffprobe says about the first video stream of a file (key=value entries), empty
/// when ffprobe cannot read it.
inline std::map<std::string, std::string> probeVideo(const std::string& path)
{
    const std::string command = "ffprobe -v error -select_streams v:0 -count_frames -show_entries "
                                "stream=codec_name,codec_tag_string,nb_read_frames,r_frame_rate,avg_frame_rate,"
                                "duration,width,height,pix_fmt -of default=noprint_wrappers=1 '"
                              + path + "' 2>/dev/null";
    std::map<std::string, std::string> entries;
    FILE* pipe = ::popen(command.c_str(), "r");
    if (!pipe)
        return entries;
    char line[512];
    while (std::fgets(line, sizeof line, pipe)) {
        std::string text(line);
        while (!text.empty() && (text.back() == '\n' || text.back() == '\r'))
            text.pop_back();
        const size_t equals = text.find('=');
        if (equals != std::string::npos)
            entries[text.substr(0, equals)] = text.substr(equals + 1);
    }
    ::pclose(pipe);
    return entries;
}

/// Appends `count` test frames of `duration` 600ths with the codec and quality.
inline MovieStatus appendTestFrames(Movie& movie, int count, int64_t duration, const char* codec,
                                    int quality = kCodecNormalQuality, int width = 64, int height = 48)
{
    for (int i = 0; i < count; ++i) {
        MovieStatus status = movie.addImage(movieTestFrame(i, width, height), {duration, kMovieTimeScale, 0},
                                            AddImageAttributes{fourCharCode(codec), quality});
        if (!status.ok())
            return status;
    }
    return MovieStatus::success();
}

} // namespace plyra::test
