// SPDX-License-Identifier: MIT
#include "windows/MainWindows.h"

#include "app/Outlets.h"
#include "platform/Application.h"
#include "platform/Bundle.h"
#include "ui_AddKeyWindow.h"
#include "ui_DetailedUsageViewController.h"
#include "ui_PreferencesWindow.h"
#include "ui_UsageWindow.h"
#include "windows/Text.h"

#include <QDialog>
#include <QMenuBar>
#include <QShortcut>

#include <utility>

namespace {

template <typename Layout> void setUp(QDialog& window) { Layout().setupUi(&window); }

void setUpDetailedUsage(QDialog& window, platform::Window& model)
{
    setUp<Ui::DetailedUsageWindow>(window);
    auto const onKey = [&window](Qt::Key key, auto action) {
        QObject::connect(new QShortcut(key, &window), &QShortcut::activated, &window, action);
    };
    onKey(Qt::Key_F11, [&model] { model.toggleFullScreen(); });
    // Otherwise the page would take this key. Each press leaves either full screen or the window.
    onKey(Qt::Key_Escape, [&window, &model] {
        if (model.fullScreen.get())
            model.fullScreen.set(false);
        else
            window.close();
    });
}

void bindPreferences(Binder& binder, Outlets& outlets)
{
    binder.bind("tarvoUsageKeysComboBox", outlets.tarvoUsageKeysComboBox);
    binder.bind("addKeyButton", outlets.addKeyButton);
    binder.bind("removeKeyButton", outlets.removeKeyButton);
    binder.bindInput("usageLimit", outlets.usageLimit);
    binder.bindRemark("usageLimitReading", outlets.usageLimitReading);
    binder.bindRemark("preferencesStatus", outlets.refreshStatus);
    binder.bind("updateIntervalPopupButton", outlets.updateIntervalPopupButton);
    binder.bind("statusBarDropdown", outlets.statusBarDropdown);
    binder.bind("usageCapToggle", outlets.usageCapToggle);
    binder.bind("remainingUsageToggle", outlets.remainingUsageToggle);
    binder.bind("lastUpdateToggle", outlets.lastUpdateToggle);
    binder.bind("nextUpdateToggle", outlets.nextUpdateToggle);
    binder.bind("onlyKeyNicknamesToggle", outlets.onlyKeyNicknamesToggle);
    binder.bind("showNotificationsToggle", outlets.showNotificationsToggle);
    binder.bind("startAtLoginToggle", outlets.startAtLoginToggle);
    binder.bindLabel("versionText", outlets.versionText);
    binder.bind("clearCacheButton", outlets.clearCacheButton);
    binder.bindLabel("cacheClearedText", outlets.cacheClearedText);
    binder.bind("useConnectionButton", outlets.useConnectionButton);
}

void bindAddKey(Binder& binder, Outlets& outlets)
{
    binder.bindInput("usageID", outlets.usageID);
    binder.bindRemark("usageIDStatus", outlets.usageIDStatus);
    binder.bindInput("keyNewNickname", outlets.keyNewNickname);
    binder.bind("autoRetrieveCodeButton", outlets.autoRetrieveCodeButton);
    binder.bind("getUsageCodeButton", outlets.getUsageCodeButton);
    binder.bind("cancelButton", outlets.cancelButton);
    binder.bind("confirmKeyButton", outlets.confirmKeyButton);
}

void bindUsage(Binder& binder, Outlets& outlets)
{
    binder.bindLabel("headlineCaption", outlets.headlineCaption);
    binder.bindFigure("headline", outlets.headline);
    binder.bindFigure("downloadUsage", outlets.downloadUsage);
    binder.bindFigure("uploadUsage", outlets.uploadUsage);
    binder.bindFigure("totalUsage", outlets.totalUsage);
    binder.bindFigure("downloadFreeUsage", outlets.downloadFreeUsage);
    binder.bindFigure("uploadFreeUsage", outlets.uploadFreeUsage);
    binder.bindFigure("totalFreeUsage", outlets.totalFreeUsage);
    binder.bindFigure("finalTotalUsage", outlets.finalTotalUsage);
    binder.bindFigure("levelUsed", outlets.totalUsage);
    binder.bindFigure("usageCapText", outlets.usageCapText);
    binder.bindFigure("usageRemainingText", outlets.usageRemainingText);
    binder.bind("usageBar", outlets.usageBar);
    binder.bindFigure("usageCapPercentageText", outlets.usageCapPercentageText);
    binder.bindRemark("usageStatus", outlets.refreshStatus);
    binder.bindLabel("lastUpdateText", outlets.lastUpdateText);
    binder.bindLabel("nextUpdateText", outlets.nextUpdateText);
    binder.bind("setCapButton", outlets.setCapButton);
    binder.bind("detailedUsageButton", outlets.detailedUsageButton);
}

void bindDetailedUsage(Binder& binder, DetailedUsageLayout& layout, WebPluginLoader& webPlugin)
{
    binder.bind("usageMonthPicker", layout.usageMonthPicker);
    binder.bind("exitFullScreen", layout.exitFullScreen);
    binder.bind("progressIndicator", layout.progressIndicator);
    binder.bindLabel("loadingText", layout.loadingText);
    binder.bind("usageWebView", layout.usageWebView, webPlugin);
}

}

MainWindows::MainWindows(
    Outlets& outlets, platform::Bundle const& bundle, platform::RunLoop& runLoop, std::filesystem::path webFolder)
    : outlets_(outlets)
    , runLoop_(runLoop)
    , webPlugin_(std::move(webFolder))
    , preferences_(outlets.window, bundle, runLoop, setUp<Ui::PreferencesWindow>,
          [&outlets](Binder& binder) { bindPreferences(binder, outlets); })
    , addKey_(
          outlets.addKeyWindow, bundle, runLoop, setUp<Ui::AddKeyWindow>,
          [&outlets](Binder& binder) { bindAddKey(binder, outlets); }, &preferences_)
    , usage_(outlets.monitorWindow, bundle, runLoop, setUp<Ui::UsageWindow>,
          [&outlets](Binder& binder) { bindUsage(binder, outlets); })
    , detailedUsage_(
          outlets.detailedUsage.window, bundle, runLoop,
          [&outlets](QDialog& window) { setUpDetailedUsage(window, outlets.detailedUsage.window); },
          [this](Binder& binder) { bindDetailedUsage(binder, outlets_.detailedUsage, webPlugin_); })
    , productName_(toQt(bundle.infoText("CFBundleDisplayName")))
{
}

void MainWindows::showUsageWindowWithMenu(platform::Application& application)
{
    if (!menu_) {
        menu_ = std::make_unique<MenuMirror>(outlets_.dropDownMenu, runLoop_);
        menu_->setTitle(productName_);
        menuBar_ = new QMenuBar(&usage_.widget());
        menuBar_->addMenu(menu_.get());
        usage_.widget().layout()->setMenuBar(menuBar_);
    }
    setMenuShown(true);
    isUninvited_ = isUninvited_ || !outlets_.monitorWindow.visible.get();
    outlets_.monitorWindow.closeAction = [&application] { application.terminate(); };
    // The daily usage window replaces this one only temporarily.
    detailedUsageClosing_ = outlets_.detailedUsage.window.visible.observeChanges([this](bool visible) {
        if (!visible && !outlets_.monitorWindow.visible.get())
            outlets_.monitorWindow.makeKeyAndOrderFront();
    });
    // A user who is typing in another of our windows keeps the focus.
    if (outlets_.window.visible.get())
        outlets_.monitorWindow.visible.set(true);
    else
        outlets_.monitorWindow.makeKeyAndOrderFront();
}

void MainWindows::leaveMenuToStatusArea()
{
    if (!menuBar_)
        return;
    outlets_.monitorWindow.closeAction = nullptr;
    detailedUsageClosing_ = {};
    setMenuShown(false);
    if (std::exchange(isUninvited_, false))
        outlets_.monitorWindow.orderOut();
}

void MainWindows::notePlaces()
{
    for (auto* const window : { &preferences_, &usage_, &detailedUsage_ })
        window->notePlace();
}

// The window grows and shrinks by the menu's height, so that the figures keep their space.
void MainWindows::setMenuShown(bool shown)
{
    auto& window = usage_.widget();
    if (menuBar_->isHidden() == !shown)
        return;
    QSize const room(0, menuBar_->sizeHint().height());
    auto const size = shown ? window.size() + room : window.size() - room;
    bool const isNew = shown && !window.isVisible();
    bool const hasOwnSize = window.windowState() == Qt::WindowNoState;
    menuBar_->setVisible(shown);
    window.layout()->activate();
    if (!isNew && hasOwnSize)
        window.resize(size);
}
