// SPDX-License-Identifier: MIT
#include "windows/Mnemonics.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QSet>

#include <algorithm>
#include <array>
#include <functional>

namespace {

enum class Letters { OfWordBeginnings, All };

// Accented letters and characters that need several keys are not on every keyboard.
bool hasKey(QChar character)
{
    constexpr std::array typedInParts { QChar::Script_Han, QChar::Script_Hiragana, QChar::Script_Katakana,
        QChar::Script_Hangul, QChar::Script_Bopomofo, QChar::Script_Yi };
    return character.isLetter() && character.decomposition().isEmpty()
        && std::ranges::find(typedInParts, character.script()) == typedInParts.end();
}

bool takesMnemonic(QWidget const* widget)
{
    auto const* const label = qobject_cast<QLabel const*>(widget);
    return label ? label->buddy() != nullptr
                 : qobject_cast<QPushButton const*>(widget) || qobject_cast<QCheckBox const*>(widget);
}

/// The positions of the letters that are not taken.
QList<qsizetype> freeLetters(QString const& text, Letters letters, QSet<QChar> const& taken)
{
    QList<qsizetype> places;
    for (qsizetype at = 0; at < text.size(); ++at) {
        bool const isEligible = letters == Letters::All || at == 0 || text[at - 1].isSpace();
        if (isEligible && hasKey(text[at]) && !taken.contains(text[at].toLower()))
            places.push_back(at);
    }
    return places;
}

}

void assignMnemonics(QWidget& window)
{
    auto left = window.findChildren<QWidget*>();
    left.removeIf(std::not_fn(takesMnemonic));
    QSet<QChar> taken;
    for (auto const letters : { Letters::OfWordBeginnings, Letters::All }) {
        auto const choices = [letters, &taken](QWidget const* widget) {
            return freeLetters(widget->property("text").toString(), letters, taken);
        };
        QWidgetList unmarked;
        // The widget with the fewest choices goes first.
        while (!left.empty()) {
            auto const next = std::ranges::min_element(
                left, {}, [&choices](QWidget const* widget) { return choices(widget).size(); });
            auto* const widget = *next;
            auto const places = choices(widget);
            left.erase(next);
            if (places.empty()) {
                unmarked.push_back(widget);
                continue;
            }
            auto text = widget->property("text").toString();
            taken.insert(text[places.front()].toLower());
            widget->setProperty("text", text.insert(places.front(), QLatin1Char('&')));
        }
        left = unmarked;
    }
}
