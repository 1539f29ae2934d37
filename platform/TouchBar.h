// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Controls.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// A gap that takes the remaining space.
inline constexpr std::string_view touchBarItemIdentifierFlexibleSpace = "TouchBarItemIdentifierFlexibleSpace";
/// A placeholder for the bars of the focused controls.
inline constexpr std::string_view touchBarItemIdentifierOtherItemsProxy = "TouchBarItemIdentifierOtherItemsProxy";

/// An item that shows a button.
struct CustomTouchBarItem {
    std::string identifier;
    Button view;
};

class TouchBarDelegate {
public:
    virtual ~TouchBarDelegate() = default;
    /// Makes the item for an identifier that is not one of the platform's own. Never returns null.
    virtual std::unique_ptr<CustomTouchBarItem> makeItemForIdentifier(std::string_view identifier) = 0;
};

/// The row of buttons that a keyboard shows for the window in front. Windows can share one.
struct TouchBar {
    /// Not owned.
    TouchBarDelegate* delegate = nullptr;
    /// The identifiers of the items to show, in order.
    std::vector<std::string> defaultItemIdentifiers;

    /// Makes the bar's items in order, without the platform's own.
    std::vector<std::unique_ptr<CustomTouchBarItem>> items() const;
};

}
