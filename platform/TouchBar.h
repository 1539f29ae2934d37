// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Controls.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// A gap that takes what room is left.
inline constexpr std::string_view touchBarItemIdentifierFlexibleSpace = "TouchBarItemIdentifierFlexibleSpace";
/// Room for the bars of the focused controls.
inline constexpr std::string_view touchBarItemIdentifierOtherItemsProxy = "TouchBarItemIdentifierOtherItemsProxy";

/// An item that shows a button.
struct CustomTouchBarItem {
    std::string identifier;
    Button view;
};

class TouchBarDelegate {
public:
    virtual ~TouchBarDelegate() = default;
    /// Makes the item of an identifier that is not one of the platform's own; never none.
    virtual std::unique_ptr<CustomTouchBarItem> makeItemForIdentifier(std::string_view identifier) = 0;
};

/// The row of buttons that a keyboard shows while a window is in front. Windows can share one.
struct TouchBar {
    /// Not owned.
    TouchBarDelegate* delegate = nullptr;
    /// What the bar shows, in order.
    std::vector<std::string> defaultItemIdentifiers;

    /// The bar's items in order, without the platform's own; made anew by each call.
    std::vector<std::unique_ptr<CustomTouchBarItem>> items() const;
};

}
