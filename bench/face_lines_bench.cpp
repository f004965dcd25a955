// SPDX-License-Identifier: MIT
// The face landmarks on the fixture portraits: their error against the hand-marked points
// (tests/data/face/hand_marks.json) and under a turn, scale and shift of the picture, as
// fractions of the distance between the eyes; the time to find both faces of a pair of
// portraits of 1 to 24 megapixels (the pictures made beforehand, as loading is not part
// of it; each run gets fresh images, so that nothing of the previous run is reused); and
// how far noise on a 24-megapixel portrait moves the landmarks, which sampling the
// picture at a few points instead of averaging it would show.
//
//   face_lines_bench [runs=5]
#include "face/face_chains.h"
#include "face_test_support.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <time.h>

using namespace plyra;
using namespace plyra::test;
using Clock = std::chrono::steady_clock;

namespace {

double cpuMilliseconds()
{
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) / 1e6;
}

void reportAccuracy(FaceLandmarker& landmarker)
{
    std::printf("accuracy: error of the matching landmark / eye distance\n");
    for (const PhotoErrors& photo : handMarkErrors(landmarker)) {
        if (!photo.found) {
            std::printf("  %-18s no face found\n", photo.photo.c_str());
            continue;
        }
        double worst = 0.0;
        double sum = 0.0;
        std::printf("  %-18s", photo.photo.c_str());
        for (const PointError& point : photo.points) {
            std::printf(" %s %.1f%%", point.what.c_str(), 100 * point.error);
            worst = std::max(worst, point.error);
            sum += point.error;
        }
        std::printf("\n  %-18s mean %.1f%%, worst %.1f%%\n", "", 100 * sum / static_cast<double>(photo.points.size()), 100 * worst);
    }
}

void reportConsistency(FaceLandmarker& landmarker)
{
    const std::vector<PointError> errors = movedFaceErrors(landmarker);
    if (errors.empty()) {
        std::printf("consistency: no face found\n");
        return;
    }
    double worst = 0.0;
    double sum = 0.0;
    for (const PointError& point : errors) {
        worst = std::max(worst, point.error);
        sum += point.error;
    }
    std::printf("consistency (turned 10°, scaled 0.8, shifted), line ends: mean %.1f%%, worst %.1f%% of the eye distance\n",
        100 * sum / static_cast<double>(errors.size()), 100 * worst);
}

// A portrait of 4:3 and about that many megapixels, the face filling the middle as in the fixtures.
cv::Mat portrait(const std::string& photo, int megapixels)
{
    const int height = static_cast<int>(std::sqrt(megapixels * 1e6 * 3.0 / 4.0));
    const int width = height * 4 / 3;
    cv::Mat face;
    cv::resize(cv::imread(photoPath(photo)), face, {height, height}, 0, 0, cv::INTER_LINEAR);
    cv::Mat picture;
    cv::copyMakeBorder(face, picture, 0, 0, (width - height) / 2, width - height - (width - height) / 2, cv::BORDER_REPLICATE);
    return picture;
}

struct Timing {
    double wall = 0.0;
    double processor = 0.0;
};

// Median wall and processor times of finding both faces; false when a face was missed.
bool timePair(FaceLandmarker& landmarker, const cv::Mat (&pictures)[2], int runs, Timing* median, Timing* fastest)
{
    std::vector<double> walls;
    std::vector<double> processors;
    bool found = true;
    for (int run = 0; run < runs; ++run) {
        const Image images[2] = {imageFromPicture(pictures[0]), imageFromPicture(pictures[1])};
        const Clock::time_point start = Clock::now();
        const double cpuStart = cpuMilliseconds();
        found = landmarker.find(images[0]) && landmarker.find(images[1]) && found;
        walls.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
        processors.push_back(cpuMilliseconds() - cpuStart);
    }
    std::sort(walls.begin(), walls.end());
    std::sort(processors.begin(), processors.end());
    *median = {walls[walls.size() / 2], processors[processors.size() / 2]};
    *fastest = {walls.front(), processors.front()};
    return found;
}

void reportSpeed(FaceLandmarker& landmarker, int runs)
{
    std::printf("speed: both faces of a pair, median of %d runs (on a busy machine the processor time tells more)\n", runs);
    for (const int megapixels : {1, 6, 12, 24}) {
        const cv::Mat pictures[2] = {portrait("ast_face.png", megapixels), portrait("hopper_face.png", megapixels)};
        Timing median;
        Timing fastest;
        if (!timePair(landmarker, pictures, runs, &median, &fastest))
            std::printf("  %d MP: a face was not found\n", megapixels);
        std::printf("  %2d MP (%d x %d): %.0f ms (fastest %.0f ms), processor time %.0f ms (least %.0f ms)\n", megapixels,
            pictures[0].cols, pictures[0].rows, median.wall, fastest.wall, median.processor, fastest.processor);
    }
}

void reportNoise(FaceLandmarker& landmarker, int runs)
{
    cv::Mat pictures[2] = {portrait("ast_face.png", 24), portrait("hopper_face.png", 24)};
    const auto clean = landmarker.find(imageFromPicture(pictures[0]));
    cv::Mat noise(pictures[0].size(), CV_16SC3);
    for (cv::Mat& picture : pictures) {
        cv::RNG(11).fill(noise, cv::RNG::NORMAL, 0, 40);
        cv::Mat noisy;
        picture.convertTo(noisy, CV_16SC3);
        cv::add(noisy, noise, noisy);
        noisy.convertTo(picture, CV_8UC3);
    }
    const auto noisy = landmarker.find(imageFromPicture(pictures[0]));
    if (!clean || !noisy) {
        std::printf("noise: no face found\n");
        return;
    }
    const std::vector<cv::Point2d> a = inPixels(*clean, pictures[0].size());
    const std::vector<cv::Point2d> b = inPixels(*noisy, pictures[0].size());
    double worst = 0.0;
    double sum = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const double e = cv::norm(a[i] - b[i]) / eyeDistance(a);
        worst = std::max(worst, e);
        sum += e;
    }
    Timing median;
    Timing fastest;
    timePair(landmarker, pictures, runs, &median, &fastest);
    std::printf("noise (24 MP, deviation 40 of 255): landmarks moved by %.2f%% on average, %.2f%% at most of the eye distance;"
                " both faces %.0f ms, processor time %.0f ms\n",
        100 * sum / static_cast<double>(a.size()), 100 * worst, median.wall, median.processor);
}

} // namespace

int main(int argc, char* argv[])
{
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5;
    std::string error;
    const std::unique_ptr<FaceLandmarker> landmarker = convertedLandmarker(&error);
    if (!landmarker) {
        std::fprintf(stderr, "face_lines_bench: this build has no face networks %s\n", error.c_str());
        return 1;
    }
    reportAccuracy(*landmarker);
    reportConsistency(*landmarker);
    reportSpeed(*landmarker, runs);
    reportNoise(*landmarker, runs);
    return 0;
}
