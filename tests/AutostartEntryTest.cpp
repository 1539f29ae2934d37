// SPDX-License-Identifier: MIT
#include "desktop/AutostartEntry.h"

#include "platform/AtomicFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace {

struct AutostartEntryTest : testing::Test {
    static void write(std::filesystem::path const& file, std::string const& lines)
    {
        std::filesystem::create_directories(file.parent_path());
        ASSERT_TRUE(platform::writeFileAtomically(file, "[Desktop Entry]\n" + lines));
    }

    TemporaryFolder folder_;
    std::filesystem::path const user_ = folder_.path() / "user" / "org.example.Meter.desktop";
    std::filesystem::path const system_ = folder_.path() / "system" / "org.example.Meter.desktop";
    std::filesystem::path const program_ = folder_.path() / "a $100% \"meter\"";
    AutostartEntry entry_ { { "org.example.Meter", "Meter", program_ }, user_.parent_path(),
        { folder_.path() / "none", system_.parent_path() } };
};

}

TEST_F(AutostartEntryTest, IsWhatStandsOnDiskTheUsersBeforeTheSystems)
{
    EXPECT_FALSE(entry_.isEnabled());
    write(system_, "Exec=usage-meter\n");
    EXPECT_TRUE(entry_.isEnabled());
    for (auto const& [lines, expected] : { std::pair("Hidden=true\n", false), { " Hidden = false\r\nExec=x", true },
             { "X-GNOME-Autostart-enabled=false", false }, { "TryExec=/nowhere/meter\nExec=/nowhere/meter\n", false },
             { "TryExec=meter\nExec=meter\n", true }, { "=\n=true\n\nHidden", true } }) {
        write(user_, lines);
        EXPECT_EQ(entry_.isEnabled(), expected) << lines;
    }
}

TEST_F(AutostartEntryTest, IsMadeForThisVeryProgramAndGoesWithoutATraceOrHidesTheSystems)
{
    write(program_, "");
    std::filesystem::permissions(program_, std::filesystem::perms::owner_all);
    EXPECT_TRUE(entry_.setEnabled(true));
    EXPECT_TRUE(entry_.isEnabled());
    auto const folder = folder_.path().string();
    EXPECT_EQ(platform::readFile(user_).value_or(""),
        "[Desktop Entry]\nType=Application\nName=Meter\nIcon=org.example.Meter\nTryExec=" + folder
            + "/a $100% \"meter\"\nExec=\"" + folder + R"(/a \\$100%% \\"meter\\"")" + "\n");
    EXPECT_TRUE(entry_.setEnabled(false));
    EXPECT_TRUE(std::filesystem::is_empty(user_.parent_path()));

    write(system_, "Exec=usage-meter\n");
    std::filesystem::permissions(user_.parent_path(), std::filesystem::perms(0755));
    EXPECT_TRUE(entry_.setEnabled(false));
    EXPECT_FALSE(entry_.isEnabled());
    EXPECT_EQ(std::filesystem::status(user_.parent_path()).permissions(), std::filesystem::perms(0755)) << "not ours";
    std::filesystem::remove_all(user_.parent_path());
    write(user_.parent_path(), "a file where the folder should be");
    EXPECT_FALSE(entry_.setEnabled(true));
}
