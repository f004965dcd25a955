// SPDX-License-Identifier: MIT
#pragma once

#include "platform/movie/movie.h"

#include <cstdio>
#include <filesystem>
#include <map>
#include <string>
#include <unistd.h>

namespace plyra::test {

/// A gradient with a moving square and fine texture, so codecs have detail to spend
/// quality on; premultiplied when `alpha` is below 255.
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

/// A fresh folder under the temporary folder, removed with its contents.
class ScratchFolder {
public:
    ScratchFolder() : m_path((std::filesystem::temp_directory_path() / "plyra_movie_test_XXXXXX").string())
    {
        if (!::mkdtemp(m_path.data()))
            m_path.clear();
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

/// ffprobe's key=value entries for the first video stream; empty when it cannot read it.
inline std::map<std::string, std::string> probeVideo(const std::string& path)
{
    const std::string command = "ffprobe -v error -select_streams v:0 -count_frames -show_entries "
                                "stream=codec_name,codec_tag_string,nb_read_frames,r_frame_rate,avg_frame_rate,"
                                "duration,width,height,pix_fmt -of default=noprint_wrappers=1 '"
                              + path + "' 2>/dev/null";
    std::map<std::string, std::string> entries;
    FILE* pipe = ::popen(command.c_str(), "r");
    char line[512];
    while (pipe && std::fgets(line, sizeof line, pipe)) {
        std::string text(line);
        text.erase(text.find_last_not_of("\r\n") + 1);
        if (const size_t equals = text.find('='); equals != std::string::npos)
            entries[text.substr(0, equals)] = text.substr(equals + 1);
    }
    if (pipe)
        ::pclose(pipe);
    return entries;
}

/// How many packets ffprobe reads from an animated GIF that it lets loop as the file
/// says, stopping at `limit`: the frame count for a GIF that plays once, `limit` for one
/// that loops for ever.
inline int loopingGifPackets(const std::string& path, int limit)
{
    const std::string command = "ffprobe -v error -ignore_loop 0 -select_streams v:0 -show_entries packet=pts "
                                "-read_intervals '%+#" + std::to_string(limit) + "' -of csv '" + path + "' 2>/dev/null";
    int packets = 0;
    FILE* pipe = ::popen(command.c_str(), "r");
    char line[256];
    while (pipe && std::fgets(line, sizeof line, pipe))
        ++packets;
    if (pipe)
        ::pclose(pipe);
    return packets;
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
