// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Property.h"

#include <optional>
#include <string>
#include <vector>

namespace platform {

class ComboBoxDelegate {
public:
    virtual ~ComboBoxDelegate() = default;
    /// The selection changed. Not called when the selection is cleared because its items were removed.
    virtual void comboBoxSelectionDidChange() = 0;
};

/// A text with a list of items to pick it from. Text and selection are independent: the text may match no item.
class ComboBox {
public:
    /// Only for observing; use the operations below to change it.
    Property<std::vector<std::string>> items;
    Property<std::optional<std::size_t>> selection;
    /// Setting the text does not change the selection.
    Property<std::string> text;

    /// Not owned; may be null. Told when the selection changes.
    ComboBoxDelegate* delegate = nullptr;
    std::function<void(std::string const&)> store;

    /// Clears the selection as well, but keeps the text and does not call the delegate.
    void removeAllItems();
    void addItems(std::vector<std::string> added);
    /// Selects an item and shows its text. Ignores an index that is out of range.
    void selectItemAtIndex(std::size_t index);
    /// Returns the selected item's text, if an item is selected.
    std::optional<std::string> objectValueOfSelectedItem() const;

    /// Handles the user's pick: selects the item and stores its text.
    void userSelected(std::size_t index);

private:
    bool select(std::size_t index);
    void notifyDelegate();
};

}
