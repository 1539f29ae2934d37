// SPDX-License-Identifier: MIT
#pragma once

#include <QProxyStyle>

/// The toolkit's Fusion style with more padding in buttons, and with an ellipsis in a pop-up that is too narrow for its
/// text.
class RoomyStyle : public QProxyStyle {
public:
    RoomyStyle();

    QSize sizeFromContents(
        ContentsType type, QStyleOption const* option, QSize const& contents, QWidget const* widget) const override;
    void drawControl(
        ControlElement element, QStyleOption const* option, QPainter* painter, QWidget const* widget) const override;
};
