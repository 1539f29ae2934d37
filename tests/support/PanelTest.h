// SPDX-License-Identifier: MIT
#pragma once

#include "demo/StatusNotifierWatcher.h"
#include "demo/StatusReader.h"

#include <gtest/gtest.h>

using Texts = std::vector<std::string>;

/// Tests the program from a panel's side, over a real session bus.
struct PanelTest : testing::Test {
    static constexpr std::chrono::seconds bound { 10 };

    static QDBusConnection connectionOf(char const* role)
    {
        return QDBusConnection::connectToBus(QDBusConnection::SessionBus, QLatin1String(role));
    }

    void startWatcher() { ASSERT_TRUE(watcher_.emplace(connectionOf("watcher")).start()); }

    bool waitFor(std::function<bool()> const& condition) { return reader_.waitFor(condition, bound); }

    /// Indentation, check mark and text of each visible line.
    Texts lines() const { return textsOf(reader_.lines(), {}); }

    QDBusConnection panel_ = connectionOf("panel");
    std::optional<StatusNotifierWatcher> watcher_;
    StatusReader reader_ { panel_ };

private:
    static Texts textsOf(std::vector<StatusLine> const& lines, std::string const& indent)
    {
        Texts texts;
        for (auto const& line : lines) {
            texts.push_back(
                indent + (line.isChecked ? "* " : "") + (line.isSeparator ? "--" : line.text.toStdString()));
            for (auto const& text : textsOf(line.submenu, indent + "  "))
                texts.push_back(text);
        }
        return texts;
    }
};
