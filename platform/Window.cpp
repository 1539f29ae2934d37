// SPDX-License-Identifier: MIT
#include "platform/Window.h"

#include <algorithm>

namespace platform {

void Window::makeKeyAndOrderFront()
{
    visible.set(true);
    frontRequests_.notify();
}

void Window::beginSheet(Alert alert, Completion completion)
{
    sheets_.push_back({ std::make_shared<Alert const>(std::move(alert)), std::move(completion) });
    attachNextSheet();
}

void Window::beginSheet(Window& sheet)
{
    if (std::ranges::find(sheets_, Sheet(&sheet), &Begun::sheet) != sheets_.end())
        return;
    sheets_.push_back({ &sheet, {} });
    attachNextSheet();
}

void Window::endSheet(Window& sheet)
{
    std::erase_if(sheets_, [&sheet](Begun const& begun) { return begun.sheet == Sheet(&sheet); });
    sheet.orderOut();
    attachNextSheet();
}

void Window::endAlerts()
{
    std::erase_if(
        sheets_, [](Begun const& begun) { return std::holds_alternative<std::shared_ptr<Alert const>>(begun.sheet); });
    attachNextSheet();
}

void Window::endAlerts(std::string_view messageText)
{
    std::erase_if(sheets_, [messageText](Begun const& begun) { return isAlert(begun, messageText); });
    attachNextSheet();
}

bool Window::hasAlert(std::string_view messageText) const
{
    return std::ranges::any_of(sheets_, [messageText](Begun const& begun) { return isAlert(begun, messageText); });
}

bool Window::isAlert(Begun const& begun, std::string_view messageText)
{
    auto const* const alert = std::get_if<std::shared_ptr<Alert const>>(&begun.sheet);
    return alert && (*alert)->messageText == messageText;
}

void Window::userAnswered(int returnCode)
{
    if (!std::holds_alternative<std::shared_ptr<Alert const>>(attachedSheet.get()))
        return;
    auto const answered = std::move(sheets_.front());
    sheets_.pop_front();
    attachNextSheet();
    if (answered.completion)
        answered.completion(returnCode);
}

void Window::userClosed()
{
    if (closeAction)
        closeAction();
    else
        orderOut();
}

void Window::userPlaced(std::string where)
{
    place.set(where);
    if (store)
        store(std::move(where));
}

void Window::attachNextSheet()
{
    attachedSheet.set(sheets_.empty() ? Sheet() : sheets_.front().sheet);
    if (auto* const* const window = std::get_if<Window*>(&attachedSheet.get()))
        (*window)->visible.set(true);
}

}
