// SPDX-License-Identifier: MIT
// Checks that the colours of every look make a text legible.
#include "windows/Contrast.h"
#include "draw/StatusIcon.h"
#include "windows/Palettes.h"

#include <QtWidgets>
#include <algorithm>
#include <gtest/gtest.h>

namespace {

using platform::Appearance;

// What WCAG 2 asks of a text of ordinary size (1.4.3, and 1.4.6 where much is wanted).
constexpr double enough = 4.5;
constexpr double high = 7;
// Of a control with its window. In the dark, few shades have both contrasts, and rounding can miss them by a little.
constexpr double visible = 2.97;

}

TEST(Contrast, WhatIsSelectedOrExplainedCanBeReadWithAnyAccentColor)
{
    using Palette = QPalette;
    for (auto const look :
        { Appearance::Light, Appearance::Dark, Appearance::HighContrastLight, Appearance::HighContrastDark }) {
        for (auto const accent :
            { 0xFFFFFF, 0x000000, 0xFFFF00, 0x0000FF, 0xFF0000, 0xA0A0A0, 0x3DAEE9, 0xEEFF55, -1 }) {
            auto const part = [accent](int shift) { return static_cast<std::uint8_t>(accent >> shift & 0xFF); };
            platform::Color const color { part(16), part(8), part(0) };
            applyLook({ look, accent < 0 ? std::nullopt : std::optional(color) });
            auto const palette = QApplication::palette();
            double const wanted = look == Appearance::Light || look == Appearance::Dark ? enough : high;
            for (auto const& [shown, ground, least] :
                { std::tuple(Palette::HighlightedText, Palette::Highlight, wanted),
                    { Palette::ToolTipText, Palette::ToolTipBase, wanted },
                    { Palette::Highlight, Palette::Window, visible } })
                EXPECT_GE(contrast(palette.color(shown), palette.color(ground)), least) << accent << ' ' << ground;
        }
    }
}

TEST(Contrast, TheStatusIconsLettersCanBeReadOnAnyPanel)
{
    for (auto const panel : { Qt::white, Qt::black, Qt::gray }) {
        QImage shown(64, 64, QImage::Format_RGB32);
        shown.fill(panel);
        QPainter(&shown).drawImage(0, 0, drawStatusIcon(QStringLiteral("57.3GB"), 64));
        // Inside its plate there are its letters alone.
        std::vector<QColor> colors;
        for (int at = 0; at < 56 * 56; ++at)
            colors.push_back(shown.pixelColor(4 + at % 56, 4 + at / 56));
        auto const [darkest, lightest] = std::ranges::minmax(colors, {}, luminance);
        EXPECT_GE(contrast(darkest, lightest), high);
    }
}
