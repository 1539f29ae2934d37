// SPDX-License-Identifier: MIT
#include "platform/TouchBar.h"

namespace platform {

std::vector<std::unique_ptr<CustomTouchBarItem>> TouchBar::items() const
{
    std::vector<std::unique_ptr<CustomTouchBarItem>> made;
    for (auto const& identifier : defaultItemIdentifiers) {
        if (identifier != touchBarItemIdentifierFlexibleSpace && identifier != touchBarItemIdentifierOtherItemsProxy)
            made.push_back(delegate->makeItemForIdentifier(identifier));
    }
    return made;
}

}
