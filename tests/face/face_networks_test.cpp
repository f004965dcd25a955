// SPDX-License-Identifier: MIT
// The converted networks against TFLite's own interpreter: the reference outputs were
// recorded once with tools/face_model/record_tflite_reference.js on the same pictures.
#include "face/face_detector_internal.h"
#include "face/face_landmark_network_internal.h"
#include "face_test_support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <functional>

namespace plyra {
namespace {

using namespace face_internal;

std::vector<float> readFloats(const std::string& path)
{
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    std::vector<float> values(static_cast<std::size_t>(file.tellg()) / sizeof(float));
    file.seekg(0);
    file.read(reinterpret_cast<char*>(values.data()), static_cast<std::streamsize>(values.size() * sizeof(float)));
    return values;
}

cv::Mat readRgb(const std::string& path)
{
    cv::Mat rgb;
    cv::cvtColor(cv::imread(path, cv::IMREAD_COLOR), rgb, cv::COLOR_BGR2RGB);
    return rgb;
}

struct NetworkCase {
    const char* name;
    const char* fileName;
    std::function<std::vector<float>(const std::string& network, const cv::Mat& rgb)> run;
};

TEST(FaceNetworks, ConvertedNetworksComputeWhatTfLiteComputes)
{
    const std::string folder = std::string(PLYRA_BINARY_DIR) + "/resources/face/";
    if (!FaceModelFiles::inFolder(folder))
        GTEST_SKIP() << "this build has no face networks";
    const NetworkCase cases[] = {
        {"detector", FaceModelFiles::kDetectorFileName,
            [](const std::string& network, const cv::Mat& rgb) {
                const std::array<cv::Mat, 2> out = FaceDetector(network).run(rgb);
                std::vector<float> values(out[0].ptr<float>(), out[0].ptr<float>() + out[0].total());
                values.insert(values.end(), out[1].ptr<float>(), out[1].ptr<float>() + out[1].total());
                return values;
            }},
        {"landmark", FaceModelFiles::kLandmarksFileName,
            [](const std::string& network, const cv::Mat& rgb) {
                float score = 0.0f;
                std::vector<float> values = FaceLandmarkNetwork(network).run(rgb, &score);
                values.push_back(score);
                return values;
            }},
    };
    for (const NetworkCase& c : cases) {
        const std::string data = std::string(PLYRA_TEST_DATA) + "/face/" + c.name;
        const std::vector<float> expected = readFloats(data + "_reference.f32");
        const std::vector<float> actual = c.run(folder + c.fileName, readRgb(data + "_input.png"));
        ASSERT_EQ(actual.size(), expected.size()) << c.name;
        float worst = 0.0f;
        for (std::size_t i = 0; i < actual.size(); ++i)
            worst = std::max(worst, std::abs(actual[i] - expected[i]) / std::max(1.0f, std::abs(expected[i])));
        // Float sums in another order: about 1e-6 of the values' size, never more than 1e-4.
        EXPECT_LT(worst, 1e-4f) << c.name;
    }
}

// A network that gives its input picture back under the output names the code reads.
cv::dnn::Net echoNetwork(const std::vector<std::string>& outputs)
{
    cv::dnn::Net net;
    for (const std::string& name : outputs) {
        cv::dnn::LayerParams params;
        const int id = net.addLayer(name, "Flatten", params);
        net.connect(0, 0, id, 0);
    }
    return net;
}

// Networks with other outputs are refused when they load, with a message that says so,
// instead of being read past their end.
TEST(FaceNetworks, NetworksWithOtherOutputsDoNotLoad)
{
    const struct {
        const char* name;
        std::function<void()> load;
        const char* message;
    } cases[] = {
        {"landmarks", [] { FaceLandmarkNetwork(echoNetwork({"conv2d_21", "conv2d_31"})); },
            "the landmark network gives 110592 coordinates and 110592 scores, not 1404 and 1"},
        {"detector", [] { FaceDetector(echoNetwork({"regressors", "classificators"})); },
            "the face detector gives 49152 box values and 49152 scores, not 14336 and 896"},
    };
    for (const auto& c : cases) {
        try {
            c.load();
            ADD_FAILURE() << c.name << " loaded";
        } catch (const cv::Exception& e) {
            EXPECT_EQ(e.err, c.message) << c.name;
        }
    }
}

} // namespace
} // namespace plyra
