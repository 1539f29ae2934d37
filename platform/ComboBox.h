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
    /// The selected item is another one now. Not told when the selection goes with its items.
    virtual void comboBoxSelectionDidChange() = 0;
};

/// A text with a list of items to pick it from. The text and the selection are apart: a text may show that is no item.
class ComboBox {
public:
    /// Observed for mirroring; changed through the operations below.
    Property<std::vector<std::string>> items;
    /// The selected item's index.
    Property<std::optional<std::size_t>> selection;
    /// Setting the text leaves the selection alone.
    Property<std::string> text;

    /// Not owned; told of changes of the selection, where there is one.
    ComboBoxDelegate* delegate = nullptr;
    std::function<void(std::string const&)> store;

    /// Keeps the text, leaves no item selected and tells nobody.
    void removeAllItems();
    void addItems(std::vector<std::string> added);
    /// Selects an item and shows its text; an index out of range does nothing.
    void selectItemAtIndex(std::size_t index);
    /// The selected item's text, where one is selected.
    std::optional<std::string> objectValueOfSelectedItem() const;

    /// The user picked an item: it is selected and its text stored.
    void userSelected(std::size_t index);

private:
    bool select(std::size_t index);
    void tellDelegate();
};

}
