// SPDX-License-Identifier: MIT
#include "platform/image/kernel_registry.h"

#include <gtest/gtest.h>

namespace plyra {
namespace {

class KernelCompileTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        using T = KernelArgumentType;
        m_registry.add({"blend", {T::Sampler, T::Sampler, T::Float}, [](const KernelCall&) {}});
        m_registry.add({"fill", {}, [](const KernelCall&) {}});
    }
    KernelRegistry m_registry;
};

TEST_F(KernelCompileTest, ResolvesDeclaredKernelsInOrder)
{
    const KernelCompileResult result = kernelsWithString("/* header\n comment */\n"
                                                         "kernel vec4 fill();\n"
                                                         "// the blend\n"
                                                         "kernel vec4 blend(sampler a, sampler b, float t);\n",
                                                         m_registry);
    ASSERT_TRUE(result.ok()) << result.errorMessage;
    ASSERT_EQ(result.kernels.size(), 2u);
    EXPECT_EQ(result.kernels[0]->name(), "fill");
    EXPECT_EQ(result.kernels[1]->name(), "blend");
    EXPECT_EQ(result.kernels[1]->signature().size(), 3u);
    EXPECT_TRUE(result.kernels[1]->function());
}

TEST_F(KernelCompileTest, UnknownNameFails)
{
    const KernelCompileResult result = kernelsWithString("kernel vec4 sharpen(sampler a);", m_registry);
    EXPECT_FALSE(result.ok());
    EXPECT_TRUE(result.kernels.empty());
    EXPECT_EQ(result.errorMessage, "line 1: unknown kernel 'sharpen'");
}

TEST_F(KernelCompileTest, MismatchedArgumentListFails)
{
    const KernelCompileResult result =
        kernelsWithString("\n\nkernel vec4 blend(sampler a, float t, sampler b);", m_registry);
    EXPECT_FALSE(result.ok());
    EXPECT_EQ(result.errorMessage,
              "line 3: kernel 'blend' takes (sampler, sampler, float) but is declared (sampler, float, sampler)");
    EXPECT_FALSE(kernelsWithString("kernel vec4 blend(sampler a, sampler b);", m_registry).ok());
}

TEST_F(KernelCompileTest, SyntaxErrorsAndEmptyTextFail)
{
    EXPECT_EQ(kernelsWithString("kernel vec4 fill()", m_registry).errorMessage, "line 1: expected ';'");
    EXPECT_EQ(kernelsWithString("vec4 fill();", m_registry).errorMessage, "line 1: expected 'kernel', found 'vec4'");
    EXPECT_EQ(kernelsWithString("kernel vec4 blend(image a);", m_registry).errorMessage,
              "line 1: unknown argument type 'image'");
    EXPECT_EQ(kernelsWithString("kernel vec4 blend(sampler);", m_registry).errorMessage,
              "line 1: expected an argument name");
    EXPECT_EQ(kernelsWithString("// nothing\n", m_registry).errorMessage, "kernel source declares no kernel");
    EXPECT_FALSE(kernelsWithString("/* never closed", m_registry).ok());
    EXPECT_FALSE(kernelsWithString(std::string("kernel\0vec4", 11), m_registry).ok());
}

TEST_F(KernelCompileTest, KernelChecksArgumentKinds)
{
    const auto kernel = kernelsWithString("kernel vec4 blend(sampler a, sampler b, float t);", m_registry).kernels.at(0);
    EXPECT_TRUE(kernel->accepts({Sampler(), Sampler(), 0.5f}));
    EXPECT_FALSE(kernel->accepts({Sampler(), 0.5f, Sampler()}));
    EXPECT_FALSE(kernel->accepts({Sampler(), Sampler()}));
}

TEST(KernelRegistry, LaterRegistrationReplacesEarlier)
{
    KernelRegistry registry;
    registry.add({"k", {KernelArgumentType::Float}, nullptr});
    registry.add({"k", {}, nullptr});
    ASSERT_TRUE(registry.find("k"));
    EXPECT_TRUE(registry.find("k")->signature.empty());
    EXPECT_FALSE(registry.find("other"));
}

} // namespace
} // namespace plyra
