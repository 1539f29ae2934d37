// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Alert.h"
#include "platform/Property.h"
#include "services/ProviderAddresses.h"

#include <optional>
#include <string>
#include <string_view>

namespace platform {
class Window;
struct Platform;
}
struct Outlets;

/// The sheet in which the user types a new connection's key or has it looked up. Main thread only.
class AddKeySheet final {
public:
    AddKeySheet(platform::Platform& platform, Outlets& outlets);
    AddKeySheet(AddKeySheet const&) = delete;
    AddKeySheet& operator=(AddKeySheet const&) = delete;

    /// Opens the sheet on the preferences window and asks the provider for this connection's key, without reporting
    /// failure.
    void open();
    void cancelButton();
    /// Shows an alert on the sheet or, if that has been closed meanwhile, on the window it was attached to.
    void beginAlert(platform::Alert alert);

    /// Fills the key field with this connection's key if the provider knows it; otherwise shows an error.
    void autoRetrieveCodeButton();
    /// Opens the provider's page about keys in the browser; shows an alert if that fails.
    void getUsageCode();

private:
    void checkCurrentKey();
    void checkCurrentKeyWithError(bool showError);
    std::string text(std::string_view key) const;
    platform::Window& alertWindow();
    void acceptLookup(std::optional<std::string> const& key, bool showError);
    void showLookupFailure();
    void showKeyStatus();

    platform::Platform& platform_;
    Outlets& outlets_;
    ProviderAddresses const addresses_;
    platform::Subscription keyObservation_;
};
