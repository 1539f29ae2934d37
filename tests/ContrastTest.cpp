// SPDX-License-Identifier: MIT
// Checks that the colours of every look make a text legible.
#include "windows/Contrast.h"
#include "draw/StatusIcon.h"
#include "windows/Palettes.h"

#include <QtWidgets>
#include <gtest/gtest.h>
#include <ranges>

namespace {

using platform::Appearance;

// What WCAG 2 asks of a text of ordinary size (1.4.3, and 1.4.6 where much is wanted).
constexpr double enough = 4.5;
constexpr double high = 7;
constexpr std::array looks { Appearance::Light, Appearance::Dark, Appearance::HighContrastLight,
    Appearance::HighContrastDark };
double enoughIn(Appearance look) { return look == looks[0] || look == looks[1] ? enough : high; }

/// Of the letters in a picture with their ground, which has most of its pixels.
double contrastIn(QImage const& picture)
{
    std::map<QRgb, int> colors;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            ++colors[picture.pixel(x, y)];
    }
    auto const ground = std::ranges::max_element(colors, {}, &std::pair<QRgb const, int>::second)->first;
    auto const contrasts
        = colors | std::views::keys | std::views::transform([ground](QRgb color) { return contrast(ground, color); });
    return std::ranges::max(contrasts);
}

}

TEST(PalettesContrast, WhatOpensAtAClickCanBeRead)
{
    using Palette = QPalette;
    for (auto const look : looks) {
        applyLook({ look, std::nullopt });
        auto const palette = QApplication::palette();
        for (auto const& [text, ground] : { std::pair(Palette::WindowText, Palette::Window),
                 { Palette::Text, Palette::Base }, { Palette::ButtonText, Palette::Button },
                 { Palette::HighlightedText, Palette::Highlight }, { Palette::ToolTipText, Palette::ToolTipBase } })
            EXPECT_GE(contrast(palette.color(text), palette.color(ground)), enoughIn(look)) << ground;
    }
}

TEST(PalettesContrast, AnyAccentColorIsReadable)
{
    for (auto const appearance : { Appearance::Light, Appearance::Dark }) {
        for (auto const accent : { 0xFFFFFF, 0x000000, 0xFFFF00, 0x0000FF, 0xFF0000, 0xA0A0A0, 0x3DAEE9, 0xEEFF55 }) {
            auto const part = [accent](int shift) { return static_cast<std::uint8_t>(accent >> shift & 0xFF); };
            applyLook({ appearance, platform::Color { part(16), part(8), part(0) } });
            auto const palette = QApplication::palette();
            EXPECT_GE(contrast(palette.highlight().color(), palette.highlightedText().color()), enough) << accent;
            // In the dark, few shades have both contrasts, and rounding can miss them by a little.
            EXPECT_GE(contrast(palette.highlight().color(), palette.window().color()), 2.97) << accent;
        }
    }
}

TEST(StatusIconContrast, LettersCanBeReadOnAnyPanel)
{
    for (auto const panel : { Qt::white, Qt::black, Qt::gray }) {
        QImage shown(64, 64, QImage::Format_RGB32);
        shown.fill(panel);
        QPainter(&shown).drawImage(0, 0, drawStatusIcon(QStringLiteral("57.3GB"), 64));
        // Its plate beside its letters is the ground.
        EXPECT_GE(contrastIn(shown.copy(4, 4, 56, 56)), high);
    }
}
