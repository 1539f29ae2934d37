// SPDX-License-Identifier: MIT
// The library's entry point.
#include "desktop/Windows.h"
#include "windows/Browser.h"
#include "windows/MainWindows.h"
#include "windows/OlderTray.h"
#include "windows/Palettes.h"
#include "windows/Toolkit.h"
#include "windows/ToolkitLoop.h"

namespace {

class DesktopWindows final : public Windows {
public:
    explicit DesktopWindows(WindowsContext const& context)
        : program_(context.application)
        , toolkit_(context.argumentCount, context.arguments, context.bundle, context.toolkitExits)
        , loop_(context.runLoop)
        , windows_(context.outlets, context.bundle, context.runLoop, context.partsFolder)
        , tray_(context.statusItem, context.runLoop)
    {
    }

    void run() override
    {
        QApplication::exec();
        windows_.notePlaces();
    }
    void quit() override { QCoreApplication::exit(); }
    void setLook(Look const& look) override { applyLook(look); }
    void showUsageWindowWithMenu() override { windows_.showUsageWindowWithMenu(program_); }
    void leaveMenuToStatusArea() override
    {
        tray_.hide();
        windows_.leaveMenuToStatusArea();
    }
    bool showInOlderTray() override { return tray_.show(); }
    void popUpMenu() override { tray_.popUpMenu(); }
    bool open(std::string const& url) override { return openInBrowser(url); }

private:
    platform::Application& program_;
    Toolkit toolkit_;
    ToolkitLoop loop_;
    MainWindows windows_;
    OlderTray tray_;
};

}

extern "C" Q_DECL_EXPORT void makeUsageMeterWindows(WindowsContext const& context, std::unique_ptr<Windows>& made)
{
    Toolkit::reportFailedStart(context.toolkitFailed);
    made = std::make_unique<DesktopWindows>(context);
}
