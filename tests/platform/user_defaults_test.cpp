// SPDX-License-Identifier: MIT
#include "platform/qt/user_defaults.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace plyra {
namespace {

TEST(UserDefaults, RegisteredFallbacksTypedReadsAndPersistence)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString file = dir.filePath(QStringLiteral("defaults.ini"));
    UserDefaults& defaults = UserDefaults::standard();
    defaults.useFile(file);

    EXPECT_FALSE(defaults.contains(QStringLiteral("codecFormat")));
    EXPECT_EQ(defaults.integer(QStringLiteral("maxSampleInterval")), 0);
    EXPECT_FALSE(defaults.boolean(QStringLiteral("texturedWindows")));

    defaults.registerDefaults({{QStringLiteral("CheckForUpdates"), true}});
    EXPECT_TRUE(defaults.boolean(QStringLiteral("CheckForUpdates")));
    defaults.setBoolean(QStringLiteral("CheckForUpdates"), false);
    EXPECT_FALSE(defaults.boolean(QStringLiteral("CheckForUpdates")));

    defaults.setObject(QStringLiteral("codecFormat"), QStringLiteral("avc1"));
    defaults.setInteger(QStringLiteral("codecQuality"), 512);
    defaults.synchronize();

    // A fresh reader of the same file sees what was written.
    defaults.useFile(file);
    EXPECT_EQ(defaults.string(QStringLiteral("codecFormat")), QStringLiteral("avc1"));
    EXPECT_EQ(defaults.integer(QStringLiteral("codecQuality")), 512);
    defaults.setObject(QStringLiteral("codecQuality"), QStringLiteral("not a number"));
    EXPECT_EQ(defaults.integer(QStringLiteral("codecQuality")), 0);
    defaults.remove(QStringLiteral("codecFormat"));
    EXPECT_FALSE(defaults.contains(QStringLiteral("codecFormat")));
}

} // namespace
} // namespace plyra
