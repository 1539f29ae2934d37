// SPDX-License-Identifier: MIT
#include "platform/Controls.h"

#include "platform/Utf8.h"

namespace platform {

void CheckBox::userToggled(bool nowOn)
{
    on.set(nowOn);
    if (store)
        store(nowOn);
    if (action)
        action();
}

void PopUpButton::userSelected(int index)
{
    indexOfSelectedItem.set(index);
    if (store)
        store(index);
    if (action)
        action();
}

void DatePicker::userPicked(Date date)
{
    dateValue.set(date);
    if (action)
        action();
}

void TextField::userTyped(std::string_view typed) { text.set(withoutControlCharacters(typed)); }

}
