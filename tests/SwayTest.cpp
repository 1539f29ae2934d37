// SPDX-License-Identifier: MIT
// The real program on a real Wayland desktop.
#include "tests/support/RunningProgramTest.h"

#include <QTest>

#include <pwd.h>
#include <unistd.h>

using namespace std::chrono_literals;

/// sway on a screen that nobody sees. It refuses to run as root.
struct SwayTest : RunningProgramTest {
    ~SwayTest() override
    {
        compositor_.terminate();
        EXPECT_TRUE(compositor_.waitForFinished());
    }

    void startDesktop()
    {
        QStringList command { "sway", "--config", "/dev/null" };
        if (::geteuid() == 0) {
            auto const* const nobody = ::getpwnam("nobody");
            ASSERT_EQ(::chown(runtimeFolder_.path().c_str(), nobody->pw_uid, nobody->pw_gid), 0);
            command = QStringList { "setpriv", "--reuid=nobody", "--regid=nogroup", "--clear-groups" } + command;
        }
        QStringList const environment { "XDG_RUNTIME_DIR=" + QString::fromStdString(runtimeFolder_.path().string()),
            "WLR_BACKENDS=headless", "WLR_LIBINPUT_NO_DEVICES=1", "WLR_RENDERER=pixman" };
        compositor_.setEnvironment(QProcess::systemEnvironment() + environment);
        compositor_.start(command.takeFirst(), command);
        ASSERT_TRUE(compositor_.waitForStarted()) << "is sway installed?";
        ASSERT_TRUE(QTest::qWaitFor([this] { return !socket("wayland-").isEmpty() && !socket("sway-ipc").isEmpty(); }));
        program_.setVariable("WAYLAND_DISPLAY", qPrintable(socket("wayland-")));
        program_.setVariable("QT_QPA_PLATFORM", "wayland");
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
    QProcess compositor_;
};

TEST_F(SwayTest, WhatIsChosenComesToTheFrontFromWhereverItIs)
{
    startDesktop();
    program_.start();
    ASSERT_TRUE(waitForFocus("Add a Connection"));
    ASSERT_TRUE(waitFor([this] { return reader_.hasItem(); }));
    EXPECT_TRUE(comesToTheFront("Usage Meter", "Usage Window"));
    EXPECT_TRUE(comesToTheFront("Add a Connection", "Preferences…"));
    EXPECT_TRUE(tellCompositor("workspace elsewhere"));
    EXPECT_TRUE(comesToTheFront("Add a Connection", "Preferences…"));
    EXPECT_EQ(program_.output(), "");
}
