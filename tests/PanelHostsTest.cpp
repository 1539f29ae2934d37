// SPDX-License-Identifier: MIT
// The real program in a real panel: waybar on sway.
#include "tests/support/RunningProgramTest.h"

#include <QTest>

#include <filesystem>
#include <pwd.h>
#include <unistd.h>

using namespace std::chrono_literals;

/// sway on a screen that nobody sees, with waybar. It refuses to run as root.
struct PanelHostsTest : RunningProgramTest {
    /// The panel of this test is a real one.
    PanelHostsTest() { watcher_.reset(); }

    ~PanelHostsTest() override
    {
        for (auto* const process : { &panelProcess_, &compositor_ }) {
            process->terminate();
            EXPECT_TRUE(process->waitForFinished());
        }
    }

    void startProcess(QProcess& process, QStringList command)
    {
        process.setEnvironment(QProcess::systemEnvironment() + environment_);
        process.start(command.takeFirst(), command);
        ASSERT_TRUE(process.waitForStarted()) << "are sway and waybar installed?";
    }

    void startDesktop()
    {
        QStringList command { "sway", "--config", "/dev/null" };
        if (::geteuid() == 0) {
            auto const* const nobody = ::getpwnam("nobody");
            ASSERT_EQ(::chown(runtimeFolder_.path().c_str(), nobody->pw_uid, nobody->pw_gid), 0);
            command = QStringList { "setpriv", "--reuid=nobody", "--regid=nogroup", "--clear-groups" } + command;
        }
        startProcess(compositor_, command);
        ASSERT_TRUE(QTest::qWaitFor([this] { return !socket("wayland-").isEmpty() && !socket("sway-ipc").isEmpty(); }));
        program_.setVariable("WAYLAND_DISPLAY", qPrintable(socket("wayland-")));
        program_.setVariable("QT_QPA_PLATFORM", "wayland");
        environment_.push_back("WAYLAND_DISPLAY=" + socket("wayland-"));
        auto const config = folder_.path() / "waybar.json";
        platform::writeFileAtomically(config, R"({ "modules-right": ["tray"] })");
        startProcess(panelProcess_, { "waybar", "--config", config.c_str() });
    }

    QString socket(std::string const& beginning) const
    {
        for (auto const& entry : std::filesystem::directory_iterator(runtimeFolder_.path())) {
            if (entry.is_socket() && entry.path().filename().string().starts_with(beginning))
                return QString::fromStdString(entry.path().string());
        }
        return {};
    }

    /// Returns whether it could.
    bool tellCompositor(QString const& command) const
    {
        return QProcess::execute(QStringLiteral("swaymsg"), { "--quiet", "--socket", socket("sway-ipc"), command })
            == 0;
    }

    bool waitForFocus(char const* title, std::chrono::milliseconds patience = bound)
    {
        auto const search = QStringLiteral("[con_id=__focused__ title=\"^%1$\"] nop").arg(QLatin1String(title));
        return QTest::qWaitFor([&] { return tellCompositor(search); }, static_cast<int>(patience.count()));
    }

    /// A click may arrive before the compositor tells the program that its window is no longer in front; a user would
    /// click again.
    bool comesToTheFront(char const* title, char const* line)
    {
        return (click(line) && waitForFocus(title, 500ms)) || (click(line) && waitForFocus(title));
    }

    TemporaryFolder runtimeFolder_;
    QStringList environment_ { "XDG_RUNTIME_DIR=" + QString::fromStdString(runtimeFolder_.path().string()),
        "WLR_BACKENDS=headless", "WLR_LIBINPUT_NO_DEVICES=1", "WLR_RENDERER=pixman", "NO_AT_BRIDGE=1" };
    QProcess compositor_;
    QProcess panelProcess_;
};

TEST_F(PanelHostsTest, WhatIsChosenComesToTheFrontFromWhereverItIs)
{
    startDesktop();
    program_.start();
    ASSERT_TRUE(waitForFocus("Add a Connection"));
    ASSERT_TRUE(waitFor([this] { return reader_.hasItem(); }));
    EXPECT_TRUE(comesToTheFront("Usage Meter", "Usage Window"));
    EXPECT_TRUE(comesToTheFront("Add a Connection", "Preferences…"));
    EXPECT_TRUE(comesToTheFront("Usage Meter", "Usage Window"));
    EXPECT_TRUE(tellCompositor("workspace elsewhere"));
    EXPECT_TRUE(comesToTheFront("Add a Connection", "Preferences…"));
    EXPECT_EQ(program_.output(), "");
}
