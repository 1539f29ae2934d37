// SPDX-License-Identifier: MIT
#pragma once

#include "app/Outlets.h"
#include "desktop/DesktopRunLoop.h"
#include "desktop/DesktopServices.h"
#include "platform/Bundle.h"
#include "platform/UserDefaults.h"
#include "tests/support/TemporaryFolder.h"
#include "windows/MainWindows.h"
#include "windows/ToolkitLoop.h"

#include <QTest>
#include <QtWidgets>

#include <gtest/gtest.h>

using Texts = std::vector<std::string>;

/// The real windows on the outlets, without the controller.
struct WindowsTest : testing::Test {
    /// Finds the widget of an outlet in any window; the test cannot continue without it.
    template <typename Widget> static Widget& widgetOf(char const* outlet)
    {
        for (auto* const widget : QApplication::allWidgets()) {
            if (widget->objectName() == QLatin1String(outlet))
                return dynamic_cast<Widget&>(*widget);
        }
        throw std::logic_error(outlet);
    }

    /// Destroys the windows before the models that they show.
    void TearDown() override { windows_.reset(); }

    TemporaryFolder folder_;
    DesktopRunLoop loop_;
    ToolkitLoop around_ { loop_ };
    DesktopApplication application_ { loop_ };
    platform::Bundle bundle_ = *platform::Bundle::open(USAGE_METER_BUNDLE, { "en" });
    platform::UserDefaults defaults_ { folder_.path() / "preferences.plist", loop_ };
    Outlets outlets_;
    std::unique_ptr<MainWindows> windows_;
};
