// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <variant>

namespace platform {

class Button;
class MenuItem;

/// The control that sent an action, if one did.
using Sender = std::variant<std::monostate, MenuItem*, Button*>;
using Action = std::function<void(Sender)>;

/// Sends an action, which may destroy the sending control.
template <typename Control> void send(Action const& action, Control* sender)
{
    auto const kept = action;
    if (kept)
        kept(Sender { sender });
}

}
