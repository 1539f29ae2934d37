// SPDX-License-Identifier: MIT
// Checks every window, alert and menu, with the controller's own texts, in the languages that are hardest on a layout.
#include "platform/AtomicFile.h"
#include "platform/PropertyList.h"
#include "tests/support/EveryWindowTest.h"
#include "windows/Text.h"

#include <set>

namespace {

platform::Dictionary readTable(std::filesystem::path const& folder, std::string const& language)
{
    auto const bytes = platform::readFile(folder / (language + ".lproj") / "Localizable.strings");
    return *platform::readPropertyList(bytes.value());
}

/// Everything about a widget that a user can read or hear.
QStringList textsOf(QWidget const& widget)
{
    QStringList texts { widget.windowTitle(), QTextDocumentFragment::fromHtml(widget.toolTip()).toPlainText(),
        widget.accessibleName(), widget.accessibleDescription() };
    if (auto const* const label = qobject_cast<QLabel const*>(&widget))
        texts << label->text();
    if (auto const* const button = qobject_cast<QAbstractButton const*>(&widget))
        texts << button->text();
    if (auto const* const input = qobject_cast<QLineEdit const*>(&widget))
        texts << input->text() << input->placeholderText();
    if (auto const* const box = qobject_cast<QComboBox const*>(&widget)) {
        for (int i = 0; i < box->count(); ++i)
            texts << box->itemText(i);
        texts << box->placeholderText();
    }
    for (auto const* const action : widget.actions())
        texts << action->text();
    texts.removeAll(QString());
    // Removes the mnemonic marks.
    return texts.replaceInStrings(QRegularExpression(QStringLiteral("&(.)")), QStringLiteral("\\1"));
}

bool isCutOff(QWidget const& widget)
{
    if (auto const* const input = qobject_cast<QLineEdit const*>(&widget)) {
        // Beside the margins, in pixels.
        int const room = widget.width() - 4;
        return widget.fontMetrics().horizontalAdvance(input->placeholderText()) > room;
    }
    bool const hasWords = qobject_cast<QLabel const*>(&widget) || qobject_cast<QAbstractButton const*>(&widget)
        || qobject_cast<QComboBox const*>(&widget);
    // What the user named does not widen a window.
    if (!hasWords || widget.sizePolicy().horizontalPolicy() == QSizePolicy::Ignored)
        return false;
    auto const needed = widget.hasHeightForWidth()
        ? QSize(widget.minimumSizeHint().width(), widget.heightForWidth(widget.width()))
        : widget.sizeHint();
    return needed != needed.boundedTo(widget.size());
}

using Keys = std::vector<QKeySequence>;

/// The mark of the key that reaches each control of a window, and each field by its label.
Keys keysOf(QWidget const& window)
{
    Keys keys;
    for (auto const* const widget : window.findChildren<QWidget*>()) {
        auto const* const label = qobject_cast<QLabel const*>(widget);
        bool const hasKey = label ? label->buddy() != nullptr
                                  : qobject_cast<QPushButton const*>(widget) || qobject_cast<QCheckBox const*>(widget);
        if (hasKey && widget->window() == &window && widget->isVisible())
            keys.push_back(QKeySequence::mnemonic(widget->property("text").toString()));
    }
    return keys;
}

class LanguageTest : public EveryWindowTest {
protected:
    ~LanguageTest() override { QApplication::setLayoutDirection(Qt::LeftToRight); }

    /// Sets the language of everything and goes through all that is visible.
    void showAllIn(std::string const& language, Qt::LayoutDirection direction)
    {
        auto const staged = folder.path() / "bundle";
        std::filesystem::copy(USAGE_METER_BUNDLE, staged, std::filesystem::copy_options::recursive);
        std::filesystem::copy(USAGE_METER_PSEUDO, staged, std::filesystem::copy_options::recursive);
        bundle = *platform::Bundle::open(staged, { language });
        ASSERT_EQ(bundle.language(), language);
        QApplication::setLayoutDirection(direction);
        showAll();
    }

    void look() override
    {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        check(toQt(title()), "status item");
        for (auto const* const widget : QApplication::allWidgets()) {
            auto const name = std::string(widget->metaObject()->className()) + ' ' + widget->objectName().toStdString();
            auto const texts = textsOf(*widget);
            for (auto const& text : texts)
                check(text, name);
            if (widget->isVisible() && isCutOff(*widget))
                problems_.insert(name + " is cut off: " + texts.join(QLatin1Char('|')).toStdString());
            if (widget->isVisible() && widget->isWindow() && (widget->width() > 1000 || widget->height() > 720))
                problems_.insert(name + " is too large");
            // The letters of the test language are on no keyboard.
            auto const keys = bundle.language() == "qps" ? Keys() : keysOf(*widget);
            if (widget->isVisible() && widget->isWindow() && std::set(keys.begin(), keys.end()).size() < keys.size())
                problems_.insert(name + " has one key twice");
        }
    }

    std::set<std::string> seen_;
    std::set<std::string> problems_;

private:
    void check(QString const& text, std::string const& place)
    {
        seen_.insert(text.toStdString());
        // Texts are in brackets, or among those that are the same in every language.
        static QRegularExpression const known(QStringLiteral("(\\[([^][]|(?1))*\\])|[MGTP]B|Error|Home|Usage Meter"));
        static QRegularExpression const letter(QStringLiteral("\\p{Latin}"));
        if (bundle.language() == "qps" && QString(text).remove(known).contains(letter))
            problems_.insert(place + " has a text that nobody can translate: " + text.toStdString());
    }
};

}

TEST_F(LanguageTest, NoTextIsLeftOverOrCutOffInTheTestLanguage)
{
    showAllIn("qps", Qt::LeftToRight);
    EXPECT_EQ(problems_, std::set<std::string>());

    // Every text was seen, except those that other programs show.
    auto const english = readTable(USAGE_METER_BUNDLE, "en");
    for (auto const& [key, value] : readTable(USAGE_METER_PSEUDO, "qps")) {
        auto const& text = *value.as<std::string>();
        auto const shown = text.substr(0, text.find('%'));
        bool const isElsewhere
            = std::ranges::any_of(std::array { "NOTIFICATION_", "DETAILED_USAGE_WARNING", "DESKTOP_", "METAINFO_" },
                [&name = key](char const* beginning) { return name.starts_with(beginning); });
        EXPECT_TRUE(isElsewhere || std::ranges::any_of(seen_, [&](auto const& each) { return each.find(shown) + 1; }))
            << key;
        auto const& original = *platform::entry<std::string>(english, key);
        EXPECT_GE(toQt(text).size(), toQt(original).size() * 14 / 10 + 2) << key;
        EXPECT_EQ(std::ranges::count(text, '%'), std::ranges::count(original, '%')) << key;
        EXPECT_EQ(text.find_first_of("'\\\n"), std::string::npos) << key;
    }
}

TEST_F(LanguageTest, NothingIsCutOffInFrench)
{
    showAllIn("fr", Qt::LeftToRight);
    EXPECT_EQ(problems_, std::set<std::string>());
}

TEST_F(LanguageTest, NothingIsCutOffWhereOneReadsFromTheRight)
{
    showAllIn("qps", Qt::RightToLeft);
    EXPECT_EQ(problems_, std::set<std::string>());
}
