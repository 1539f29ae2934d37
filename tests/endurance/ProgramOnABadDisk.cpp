// SPDX-License-Identifier: MIT
// The real program on small disks of its own that fill up. They are mounted for this process and its children alone,
// which needs to be root.
#include "tests/support/RunningProgramTest.h"

#include <fstream>
#include <sched.h>
#include <sys/mount.h>

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace {

class ProgramOnABadDisk : public RunningProgramTest {
protected:
    static auto filesIn(fs::path const& folder) { return std::distance(fs::directory_iterator(folder), {}); }
};

// A disk of 64 KiB and 16 files.
struct SmallDisk {
    explicit SmallDisk(fs::path folder)
        : place(std::move(folder))
    {
        fs::create_directories(place);
        ok = ::mount("small", place.c_str(), "tmpfs", 0, "size=64k,nr_inodes=16,mode=0700") == 0;
    }
    SmallDisk(SmallDisk const&) = delete;
    SmallDisk& operator=(SmallDisk const&) = delete;
    ~SmallDisk() { ::umount2(place.c_str(), MNT_DETACH); }

    void remount(unsigned long flags) const
    {
        EXPECT_EQ(::mount(nullptr, place.c_str(), nullptr, MS_REMOUNT | flags, nullptr), 0);
    }

    fs::path place;
    bool ok = false;
};

}

TEST_F(ProgramOnABadDisk, GoesOnWhileNothingCanBeWrittenAndSavesAgainAfterwards)
{
    if (::unshare(CLONE_NEWNS) != 0 || ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
        GTEST_SKIP() << "only root can mount";
    SmallDisk const config(program_.settingsFile.parent_path().parent_path());
    SmallDisk const cache(program_.cacheFolder.parent_path());
    ASSERT_TRUE(config.ok && cache.ok);
    using OnDisk = std::function<void(SmallDisk const&)>;
    std::vector<std::tuple<char const*, OnDisk, OnDisk>> const faults {
        { "full", [](auto const& disk) { std::ofstream(disk.place / "0") << std::string(100'000, 'x') << std::flush; },
            [](auto const& disk) { fs::remove(disk.place / "0"); } },
        { "no more files",
            [](auto const& disk) {
                for (int i = 0; i < 16; ++i)
                    std::ofstream(disk.place / std::to_string(i));
            },
            [](auto const& disk) {
                for (int i = 0; i < 16; ++i)
                    fs::remove(disk.place / std::to_string(i));
            } },
        { "read only", [](auto const& disk) { disk.remount(MS_RDONLY); }, [](auto const& disk) { disk.remount(0); } },
    };
    program_.startWith({ home, cottage });
    ASSERT_TRUE(waitForTitle("57.3GB"));
    for (auto const& [what, begin, end] : faults) {
        SCOPED_TRACE(what);
        fs::remove(program_.cacheFolder / "secretTwo");
        for (auto const* const disk : { &config, &cache })
            begin(*disk);
        ASSERT_TRUE(click(cottage));
        EXPECT_TRUE(waitForTitle("5.2GB")) << "it shows what it cannot keep";
        EXPECT_EQ(storedSelection(), home);
        EXPECT_FALSE(fs::exists(program_.cacheFolder / "secretTwo"));
        EXPECT_EQ(filesIn(config.place / ProgramUnderTest::identifier), 1);
        EXPECT_EQ(filesIn(program_.cacheFolder), 1);

        for (auto const* const disk : { &config, &cache })
            end(*disk);
        ASSERT_TRUE(click("Update Now"));
        EXPECT_TRUE(waitFor([this] { return fs::exists(program_.cacheFolder / "secretTwo"); }));
        ASSERT_TRUE(click(home));
        EXPECT_TRUE(waitForTitle("57.3GB"));
        ASSERT_TRUE(click(cottage));
        EXPECT_TRUE(waitFor([this] { return storedSelection() == cottage; }));
        ASSERT_TRUE(click(home));
        EXPECT_TRUE(waitFor([this] { return storedSelection() == home; }));
    }
    stop();
}
