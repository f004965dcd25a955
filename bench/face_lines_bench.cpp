// SPDX-License-Identifier: MIT
// The face landmarks on the fixture portraits: their error against the hand-marked points
// (tests/data/face/hand_marks.json) and under a turn, scale and shift of the picture, as
// fractions of the distance between the eyes, and the time to find both faces of a pair
// of portraits of 1 to 24 megapixels (the pictures made beforehand, as loading is not
// part of it; each run gets fresh images, so that the reduced copies are made anew).
//
//   face_lines_bench [runs=5]
#include "face/face_chains.h"
#include "face/face_landmarker.h"

#include <opencv2/core/persistence.hpp>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <time.h>

using namespace plyra;
using Clock = std::chrono::steady_clock;

namespace {

const std::string kData = PLYRA_TEST_DATA;

double cpuMilliseconds()
{
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) / 1e6;
}

Image imageFromPicture(const cv::Mat& bgr)
{
    cv::Mat rgba;
    cv::cvtColor(bgr, rgba, cv::COLOR_BGR2RGBA);
    Bitmap bitmap(rgba.cols, rgba.rows);
    for (int y = 0; y < rgba.rows; ++y)
        std::memcpy(bitmap.row(rgba.rows - 1 - y), rgba.ptr(y), static_cast<std::size_t>(rgba.cols) * 4);
    return Image::fromBitmap(std::move(bitmap));
}

std::vector<cv::Point2d> inPixels(const FaceLandmarks& face, cv::Size size)
{
    std::vector<cv::Point2d> points;
    for (const Point& p : face.points)
        points.emplace_back(p.x * size.width, (1.0 - p.y) * size.height);
    return points;
}

double eyeDistance(const std::vector<cv::Point2d>& p)
{
    return cv::norm((p[33] + p[133]) / 2.0 - (p[362] + p[263]) / 2.0);
}

void reportAccuracy(FaceLandmarker& landmarker)
{
    cv::FileStorage marks(kData + "/face/hand_marks.json", cv::FileStorage::READ | cv::FileStorage::FORMAT_JSON);
    const cv::FileNode indices = marks["landmarks"];
    std::printf("accuracy: error of the matching landmark / eye distance\n");
    for (const cv::FileNode& photo : marks["faces"]) {
        const cv::Mat picture = cv::imread(kData + "/photos/" + photo.name());
        const std::optional<FaceLandmarks> face = landmarker.find(imageFromPicture(picture));
        if (!face) {
            std::printf("  %-18s no face found\n", photo.name().c_str());
            continue;
        }
        const std::vector<cv::Point2d> found = inPixels(*face, picture.size());
        double worst = 0.0;
        double sum = 0.0;
        std::printf("  %-18s", photo.name().c_str());
        for (const cv::FileNode& mark : photo) {
            const cv::Point2d hand(mark[0].real(), mark[1].real());
            const double e = cv::norm(found[static_cast<std::size_t>(indices[mark.name()].real())] - hand) / eyeDistance(found);
            std::printf(" %s %.1f%%", mark.name().c_str(), 100 * e);
            worst = std::max(worst, e);
            sum += e;
        }
        std::printf("\n  %-18s mean %.1f%%, worst %.1f%%\n", "", 100 * sum / static_cast<double>(photo.size()), 100 * worst);
    }
}

void reportConsistency(FaceLandmarker& landmarker)
{
    const cv::Mat picture = cv::imread(kData + "/photos/ast_face.png");
    cv::Matx23d move = cv::getRotationMatrix2D({150, 150}, 10.0, 0.8);
    move(0, 2) += 70;
    move(1, 2) += 20;
    cv::Mat moved;
    cv::warpAffine(picture, moved, move, {420, 360}, cv::INTER_AREA, cv::BORDER_REPLICATE);
    const auto before = landmarker.find(imageFromPicture(picture));
    const auto after = landmarker.find(imageFromPicture(moved));
    if (!before || !after) {
        std::printf("consistency: no face found\n");
        return;
    }
    const std::vector<cv::Point2d> a = inPixels(*before, picture.size());
    const std::vector<cv::Point2d> b = inPixels(*after, moved.size());
    double worst = 0.0;
    double sum = 0.0;
    int count = 0;
    for (const FaceChain& chain : faceChains()) {
        for (const int i : chain.landmarks) {
            const cv::Point2d p = a[static_cast<std::size_t>(i)];
            const cv::Point2d expected(move(0, 0) * p.x + move(0, 1) * p.y + move(0, 2), move(1, 0) * p.x + move(1, 1) * p.y + move(1, 2));
            const double e = cv::norm(b[static_cast<std::size_t>(i)] - expected) / eyeDistance(b);
            worst = std::max(worst, e);
            sum += e;
            ++count;
        }
    }
    std::printf("consistency (turned 10°, scaled 0.8, shifted), line ends: mean %.1f%%, worst %.1f%% of the eye distance\n",
        100 * sum / count, 100 * worst);
}

void reportSpeed(FaceLandmarker& landmarker, int runs)
{
    const cv::Mat faces[2] = {cv::imread(kData + "/photos/ast_face.png"), cv::imread(kData + "/photos/hopper_face.png")};
    std::printf("speed: both faces of a pair, median of %d runs\n", runs);
    for (const int megapixels : {1, 6, 12, 24}) {
        // Portraits of 4:3, the face filling the middle as in the fixtures.
        const int height = static_cast<int>(std::sqrt(megapixels * 1e6 * 3.0 / 4.0));
        const int width = height * 4 / 3;
        cv::Mat pictures[2];
        for (int i = 0; i < 2; ++i) {
            cv::Mat face;
            cv::resize(faces[i], face, {height, height}, 0, 0, cv::INTER_LINEAR);
            cv::copyMakeBorder(face, pictures[i], 0, 0, (width - height) / 2, width - height - (width - height) / 2, cv::BORDER_REPLICATE);
        }
        std::vector<double> times;
        std::vector<double> cpuTimes;
        for (int run = 0; run < runs; ++run) {
            const Image images[2] = {imageFromPicture(pictures[0]), imageFromPicture(pictures[1])};
            const Clock::time_point start = Clock::now();
            const double cpuStart = cpuMilliseconds();
            const bool found = landmarker.find(images[0]) && landmarker.find(images[1]);
            times.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
            cpuTimes.push_back(cpuMilliseconds() - cpuStart);
            if (!found)
                std::printf("  %d MP: a face was not found\n", megapixels);
        }
        std::sort(times.begin(), times.end());
        std::sort(cpuTimes.begin(), cpuTimes.end());
        // On a busy machine the processor time tells more than the wall time.
        std::printf("  %2d MP (%d x %d): %.0f ms (fastest %.0f ms), processor time %.0f ms\n", megapixels, width, height,
            times[times.size() / 2], times.front(), cpuTimes[cpuTimes.size() / 2]);
    }
}

} // namespace

int main(int argc, char* argv[])
{
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5;
    const std::optional<FaceModelFiles> files = FaceModelFiles::inFolder(std::string(PLYRA_BINARY_DIR) + "/resources/face");
    std::string error;
    const std::unique_ptr<FaceLandmarker> landmarker = files ? FaceLandmarker::create(*files, &error) : nullptr;
    if (!landmarker) {
        std::fprintf(stderr, "face_lines_bench: this build has no face networks %s\n", error.c_str());
        return 1;
    }
    reportAccuracy(*landmarker);
    reportConsistency(*landmarker);
    reportSpeed(*landmarker, runs);
    return 0;
}
