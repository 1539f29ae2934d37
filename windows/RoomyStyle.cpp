// SPDX-License-Identifier: MIT
#include "windows/RoomyStyle.h"

#include <algorithm>

namespace {

// In pixels, on both sides together.
constexpr int roomBesideLetters = 24;

}

RoomyStyle::RoomyStyle()
    : QProxyStyle(QStringLiteral("Fusion"))
{
}

QSize RoomyStyle::sizeFromContents(
    ContentsType type, QStyleOption const* option, QSize const& contents, QWidget const* widget) const
{
    auto size = QProxyStyle::sizeFromContents(type, option, contents, widget);
    if (type == CT_PushButton)
        size.setWidth(std::max(size.width(), contents.width() + roomBesideLetters));
    return size;
}
