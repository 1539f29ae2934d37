// SPDX-License-Identifier: MIT
#include "desktop/AutostartEntry.h"
#include "desktop/Folders.h"
#include "platform/AtomicFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

struct AutostartEntryTest : testing::Test {
    static void write(fs::path const& file, std::string const& lines)
    {
        fs::create_directories(file.parent_path());
        ASSERT_TRUE(platform::writeFileAtomically(file, "[Desktop Entry]\n" + lines));
    }

    /// The program's entry, in the folders of a desktop whose environment this is.
    AutostartEntry makeEntry() const
    {
        ::setenv("XDG_CONFIG_HOME", (folder_.path() / "user").c_str(), 1);
        ::setenv("XDG_CONFIG_DIRS", ("/nowhere:" + (folder_.path() / "system").string()).c_str(), 1);
        return { { "org.example.Meter", "Meter", program_ }, userAutostartFolder(), systemAutostartFolders() };
    }

    TemporaryFolder folder_;
    fs::path const user_ = folder_.path() / "user/autostart/org.example.Meter.desktop";
    fs::path const system_ = folder_.path() / "system/autostart/org.example.Meter.desktop";
    fs::path const program_ = folder_.path() / "a $100% \"meter\"";
    AutostartEntry entry_ = makeEntry();
};

TEST_F(AutostartEntryTest, TheUsersFileGoesBeforeTheSystems)
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

TEST_F(AutostartEntryTest, SwitchedOnItStartsThisVeryProgram)
{
    fs::rename(folder_.script("true"), program_);
    EXPECT_TRUE(entry_.setEnabled(true));
    EXPECT_TRUE(entry_.isEnabled());
    auto const folder = folder_.path().string();
    EXPECT_EQ(platform::readFile(user_).value_or(""),
        "[Desktop Entry]\nType=Application\nName=Meter\nIcon=org.example.Meter\nTryExec=" + folder
            + "/a $100% \"meter\"\nExec=\"" + folder + R"(/a \\$100%% \\"meter\\"")" + "\n");
    EXPECT_TRUE(entry_.setEnabled(false));
    EXPECT_TRUE(fs::is_empty(user_.parent_path()));
}

TEST_F(AutostartEntryTest, HidesTheSystemsFromItsUserInAFolderThatStaysAsItIs)
{
    write(system_, "Exec=usage-meter\n");
    fs::create_directories(user_.parent_path());
    fs::permissions(user_.parent_path(), fs::perms(0755));
    EXPECT_TRUE(entry_.setEnabled(false));
    EXPECT_FALSE(entry_.isEnabled());
    EXPECT_EQ(fs::status(user_.parent_path()).permissions(), fs::perms(0755));
    EXPECT_FALSE(AutostartEntry({ "a", "b", "c" }, user_, {}).setEnabled(true)) << "where a file is";
}
