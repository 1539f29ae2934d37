// SPDX-License-Identifier: MIT
#include "platform/ComboBox.h"

namespace platform {

void ComboBox::removeAllItems()
{
    selection.set(std::nullopt);
    items.set({});
}

void ComboBox::addItems(std::vector<std::string> added)
{
    auto const& present = items.get();
    added.insert(added.begin(), present.begin(), present.end());
    items.set(std::move(added));
}

std::optional<std::string> ComboBox::objectValueOfSelectedItem() const
{
    if (!selection.get())
        return std::nullopt;
    return items.get().at(*selection.get());
}

void ComboBox::selectItemAtIndex(std::size_t index)
{
    if (select(index))
        notifyDelegate();
}

void ComboBox::userSelected(std::size_t index)
{
    bool const changed = select(index);
    if (store && index < items.get().size())
        store(text.get());
    if (changed)
        notifyDelegate();
}

bool ComboBox::select(std::size_t index)
{
    if (index >= items.get().size())
        return false;
    bool const changed = selection.get() != index;
    selection.set(index);
    text.set(items.get()[index]);
    return changed;
}

void ComboBox::notifyDelegate()
{
    if (delegate)
        delegate->comboBoxSelectionDidChange();
}

}
