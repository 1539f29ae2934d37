// SPDX-License-Identifier: MIT
// The real program in a real panel: waybar on sway.
#include "tests/support/RunningProgramTest.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <filesystem>
#include <pwd.h>
#include <unistd.h>

using namespace std::chrono_literals;

/// sway on a screen that nobody sees, with waybar. It refuses to run as root.
struct PanelHostsTest : RunningProgramTest {
    /// The panel of this test is a real one.
    PanelHostsTest()
    {
        watcher_.reset();
        for (auto const& [variable, value] : { std::pair("XDG_CONFIG_HOME", folder_.path().c_str()),
                 { "XDG_RUNTIME_DIR", runtimeFolder_.path().c_str() }, { "WLR_BACKENDS", "headless" },
                 { "WLR_LIBINPUT_NO_DEVICES", "1" }, { "WLR_RENDERER", "pixman" }, { "NO_AT_BRIDGE", "1" } })
            setVariable(variable, value);
    }

    ~PanelHostsTest() override
    {
        for (auto* const process : { &panelProcess_, &compositor_ }) {
            process->terminate();
            EXPECT_TRUE(process->waitForFinished());
        }
    }

    void setVariable(char const* name, char const* value)
    {
        environment_.insert(QLatin1String(name), QString::fromUtf8(value));
    }

    void startProcess(QProcess& process, QString const& name, QStringList const& arguments = {}) const
    {
        process.setProcessEnvironment(environment_);
        process.setStandardOutputFile(QProcess::nullDevice());
        process.setStandardErrorFile(QProcess::nullDevice());
        process.start(name, arguments);
        ASSERT_TRUE(process.waitForStarted()) << "is " << name.toStdString() << " installed?";
    }

    void startDesktop()
    {
        QStringList command { "sway", "--config", "/dev/null" };
        if (::geteuid() == 0) {
            auto const* const nobody = ::getpwnam("nobody");
            ASSERT_EQ(::chown(runtimeFolder_.path().c_str(), nobody->pw_uid, nobody->pw_gid), 0);
            command = QStringList { "setpriv", "--reuid=nobody", "--regid=nogroup", "--clear-groups" } + command;
        }
        startProcess(compositor_, command.takeFirst(), command);
        ASSERT_TRUE(QTest::qWaitFor([this] { return !socket("wayland-").empty() && !socket("sway-ipc").empty(); }));
        setVariable("WAYLAND_DISPLAY", socket("wayland-").c_str());
        program_.setVariable("WAYLAND_DISPLAY", socket("wayland-").c_str());
        program_.setVariable("QT_QPA_PLATFORM", "wayland");
        std::filesystem::create_directories(folder_.path() / "waybar");
        platform::writeFileAtomically(folder_.path() / "waybar/config", R"({ "modules-right": ["tray"] })");
        startProcess(panelProcess_, QStringLiteral("waybar"));
    }

    std::filesystem::path socket(std::string const& beginning) const
    {
        for (auto const& entry : std::filesystem::directory_iterator(runtimeFolder_.path())) {
            if (entry.is_socket() && entry.path().filename().string().starts_with(beginning))
                return entry.path();
        }
        return {};
    }

    QByteArray askCompositor(QStringList const& question) const
    {
        QProcess process;
        process.start(QStringLiteral("swaymsg"),
            QStringList { "--raw", "--socket", QString::fromStdString(socket("sway-ipc").string()) } + question);
        process.waitForFinished();
        return process.readAllStandardOutput();
    }

    static QStringList focusedNames(QJsonObject const& node)
    {
        QStringList names;
        if (node["focused"].toBool())
            names.push_back(node["name"].toString());
        for (auto const& list : { node["nodes"].toArray(), node["floating_nodes"].toArray() }) {
            for (auto const& child : list)
                names += focusedNames(child.toObject());
        }
        return names;
    }

    bool waitForFocus(char const* title, std::chrono::milliseconds patience = bound)
    {
        auto const isFocused = [&] {
            auto const tree = QJsonDocument::fromJson(askCompositor({ "-t", "get_tree" })).object();
            return focusedNames(tree) == QStringList { QString::fromUtf8(title) };
        };
        return QTest::qWaitFor(isFocused, static_cast<int>(patience.count()));
    }

    /// A click may arrive before the compositor tells the program that its window is no longer in front; a user would
    /// click again.
    bool comesToTheFront(char const* title, char const* line)
    {
        return (click(line) && waitForFocus(title, 500ms)) || (click(line) && waitForFocus(title));
    }

    TemporaryFolder runtimeFolder_;
    QProcessEnvironment environment_ = QProcessEnvironment::systemEnvironment();
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
    askCompositor({ "workspace", "elsewhere" });
    EXPECT_TRUE(waitForFocus("elsewhere"));
    EXPECT_TRUE(comesToTheFront("Add a Connection", "Preferences…"));
    EXPECT_EQ(program_.output(), "");
}
