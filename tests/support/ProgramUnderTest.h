// SPDX-License-Identifier: MIT
#pragma once

#include "platform/AtomicFile.h"
#include "platform/PropertyList.h"
#include "storage/SettingsKeys.h"
#include "tests/support/TemporaryFolder.h"

#include <QProcess>

#include <csignal>

/// The real program, copied from the build folder to a private folder, or from the installation that
/// USAGE_METER_INSTALLATION names. It has its own settings, caches and identifier.
class ProgramUnderTest {
public:
    static constexpr char const* identifier = "net.tarvo.UsageMeter.test";

    ProgramUnderTest()
    {
        setInfo("CFBundleIdentifier", identifier);

        for (auto const& [variable, folder] :
            { std::pair("HOME", "home"), { "XDG_CONFIG_HOME", "config" }, { "XDG_CACHE_HOME", "cache" } })
            setVariable(variable, (folder_.path() / folder).c_str());
        setVariable("LC_ALL", "en_US.UTF-8");
        for (char const* const variable : { "LANGUAGE", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY" })
            environment_.remove(QLatin1String(variable));
        process_.setProcessChannelMode(QProcess::MergedChannels);
        // Some launchers leave SIGCHLD ignored in their children.
        process_.setChildProcessModifier([] { std::signal(SIGCHLD, SIG_IGN); });
    }

    void setInfo(std::string const& key, std::string const& text) const
    {
        auto info = *platform::readPropertyList(*platform::readFile(infoFile));
        info.insert_or_assign(key, text);
        platform::writeFileAtomically(infoFile, platform::writePropertyList(info));
    }

    void setVariable(char const* name, char const* value)
    {
        environment_.insert(QLatin1String(name), QString::fromUtf8(value));
    }

    void start()
    {
        process_.setProcessEnvironment(environment_);
        process_.start(QString::fromStdString(find("usage-meter")), {});
        process_.waitForStarted();
    }

    /// Stores these connections with the first one selected, and its cap, which may be empty.
    void startWith(platform::Array const& entries, std::string const& cap = {})
    {
        auto const selected = *entries.at(0).as<std::string>();
        platform::Dictionary const stored { { settings::tarvoKeys, entries }, { settings::tarvoKeySelected, selected },
            { settings::usageCapValues, platform::Dictionary { { selected, cap } } } };
        platform::makePrivateFolder(settingsFile.parent_path());
        platform::writeFileAtomically(settingsFile, platform::writePropertyList(stored));
        start();
    }

    /// A file of the program, wherever it is.
    std::filesystem::path find(char const* file) const
    {
        for (auto const& entry : std::filesystem::recursive_directory_iterator(root_)) {
            if (entry.is_regular_file() && entry.path().filename() == file)
                return entry.path();
        }
        throw std::logic_error(file);
    }

    qint64 processId() const { return process_.processId(); }
    /// Does nothing if the program has ended, since its id 0 would mean the test's own process group.
    void signal(int number) const
    {
        if (processId() != 0)
            ::kill(static_cast<pid_t>(processId()), number);
    }

    /// Returns the exit status, or -1 if the program is still running or was killed by a signal.
    int waitForExit(std::chrono::milliseconds bound)
    {
        process_.waitForFinished(static_cast<int>(bound.count()));
        bool const exited = process_.state() == QProcess::NotRunning && process_.exitStatus() == QProcess::NormalExit;
        return exited ? process_.exitCode() : -1;
    }

    /// Everything written to standard output and error since the first start.
    std::string const& output() { return output_ += process_.readAll().toStdString(); }

private:
    std::filesystem::path stage() const
    {
        auto const* const installation = std::getenv("USAGE_METER_INSTALLATION");
        std::filesystem::path const source = installation ? installation : USAGE_METER_BUILD;
        std::vector<std::filesystem::path> parts { USAGE_METER_PROGRAM, USAGE_METER_PARTS, USAGE_METER_BUNDLE };
        if (installation)
            parts = { source };
        for (auto const& part : parts) {
            auto const copy = folder_.path() / part.lexically_relative(source);
            std::filesystem::create_directories(copy.parent_path());
            std::filesystem::copy(part, copy, std::filesystem::copy_options::recursive);
        }
        return folder_.path();
    }

    TemporaryFolder folder_;
    std::filesystem::path const root_ = stage();
    QProcessEnvironment environment_ = QProcessEnvironment::systemEnvironment();
    QProcess process_;
    std::string output_;

public:
    std::filesystem::path const infoFile = find("Info.plist");
    std::filesystem::path const settingsFile = folder_.path() / "config" / identifier / "preferences.plist";
    std::filesystem::path const cacheFolder = folder_.path() / "cache" / identifier;
};
