// SPDX-License-Identifier: MIT
#pragma once

#include "draw/StatusPixmap.h"

#include <QImage>
#include <QList>
#include <QString>

#include <vector>

/// Draws the title in a square of this many pixels, light on a dark plate so that it is legible on any panel.
QImage drawStatusIcon(QString const& title, int size);

/// Draws a title for a host with this look, at the usual panel sizes and at twice those. Empty for a host that shows
/// text.
QList<QImage> statusImages(QString const& title, StatusLook look);
/// The same in the format of the status item protocol.
std::vector<StatusPixmap> statusPixmaps(QString const& title, StatusLook look);
