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

// Letters with an accent, and signs that take several keys, are not on everybody's keyboard.
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

/// The place of the first letter that is not taken; -1 if there is none.
qsizetype freeLetter(QString const& text, Letters letters, QSet<QChar> const& taken)
{
    for (qsizetype at = 0; at < text.size(); ++at) {
        bool const isEligible = letters == Letters::All || at == 0 || text[at - 1].isSpace();
        if (isEligible && hasKey(text[at]) && !taken.contains(text[at].toLower()))
            return at;
    }
    return -1;
}

}

void assignMnemonics(QWidget& window)
{
    auto left = window.findChildren<QWidget*>();
    left.removeIf(std::not_fn(takesMnemonic));
    QSet<QChar> taken;
    for (auto const letters : { Letters::OfWordBeginnings, Letters::All }) {
        left.removeIf([letters, &taken](QWidget* widget) {
            auto text = widget->property("text").toString();
            auto const at = freeLetter(text, letters, taken);
            if (at < 0)
                return false;
            taken.insert(text[at].toLower());
            return widget->setProperty("text", text.insert(at, QLatin1Char('&')));
        });
    }
}
