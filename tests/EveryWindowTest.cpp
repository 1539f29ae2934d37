// SPDX-License-Identifier: MIT
// Checks every window, alert and menu, with the controller's own texts, in the languages that are hardest on a layout
// and in every look.
#include "platform/AtomicFile.h"
#include "platform/PropertyList.h"
#include "tests/support/ControllerTest.h"
#include "windows/Contrast.h"
#include "windows/MainWindows.h"
#include "windows/Palettes.h"
#include "windows/Text.h"

#include <QtWidgets>

#include <set>

namespace {

using platform::Appearance;

/// Everything about a widget that a user can read or hear.
QStringList textsOf(QWidget const& widget)
{
    QStringList texts { QTextDocumentFragment::fromHtml(widget.toolTip()).toPlainText() };
    for (char const* const property :
        { "windowTitle", "accessibleName", "accessibleDescription", "text", "placeholderText" })
        texts << widget.property(property).toString();
    auto const* const box = qobject_cast<QComboBox const*>(&widget);
    for (int i = 0; box && i < box->count(); ++i)
        texts << box->itemText(i);
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

/// Whether a key reaches it; a field's by its label.
bool hasKey(QWidget const& widget)
{
    auto const* const label = qobject_cast<QLabel const*>(&widget);
    return label ? label->buddy() != nullptr
                 : qobject_cast<QPushButton const*>(&widget) || qobject_cast<QCheckBox const*>(&widget);
}

/// Of a widget's words with what is behind them.
double contrastOf(QWidget const& widget)
{
    auto const contrastOfRoles = [&palette = widget.palette()](QPalette::ColorRole words, QPalette::ColorRole ground) {
        return contrast(palette.color(words), palette.color(ground));
    };
    if (auto const* const input = qobject_cast<QLineEdit const*>(&widget))
        return contrastOfRoles(input->text().isEmpty() ? QPalette::PlaceholderText : QPalette::Text, QPalette::Base);
    if (qobject_cast<QPushButton const*>(&widget) || qobject_cast<QComboBox const*>(&widget))
        return contrastOfRoles(QPalette::ButtonText, QPalette::Button);
    return contrastOfRoles(QPalette::WindowText, QPalette::Window);
}

/// A language, the direction in which one reads it, and a look.
using Setting = std::tuple<std::string, Qt::LayoutDirection, Appearance>;

/// Goes through every window, alert and state of the program as its controller shows them, and looks at each.
class EveryWindowTest : public ControllerTest, public testing::WithParamInterface<Setting> {
protected:
    ~EveryWindowTest() override
    {
        windows_.reset();
        QApplication::setLayoutDirection(Qt::LeftToRight);
    }

    void showAll()
    {
        auto const staged = folder.path() / "bundle";
        std::filesystem::copy(USAGE_METER_BUNDLE, staged, std::filesystem::copy_options::recursive);
        std::filesystem::copy(USAGE_METER_PSEUDO, staged, std::filesystem::copy_options::recursive);
        bundle = *platform::Bundle::open(staged, { language_ });
        QApplication::setLayoutDirection(direction_);
        applyLook({ appearance_, std::nullopt });
        // Keys and nicknames are numbers, and dates are in another script, so that only our texts have Latin letters.
        platform.dateLocale = "ja_JP";
        showFirstStart();
        showUsage();
        showPreferences();
        showDailyUsage();
        showConversion();
    }

    /// Checks everything on the screen now.
    void look()
    {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        checkText(toQt(title()), "status item");
        std::set<std::pair<QWidget const*, QKeySequence>> keys;
        for (auto* const widget : QApplication::allWidgets()) {
            auto const name = std::string(widget->metaObject()->className()) + ' ' + widget->objectName().toStdString();
            auto const texts = textsOf(*widget);
            for (auto const& text : texts)
                checkText(text, name);
            if (!widget->isVisible())
                continue;
            checkShape(*widget, name + ": " + texts.join(QLatin1Char('|')).toStdString());
            auto const key = QKeySequence::mnemonic(widget->property("text").toString());
            // The letters of the test language are on no keyboard.
            if (language_ != "qps" && hasKey(*widget) && !keys.emplace(widget->window(), key).second)
                problems_.insert(name + " has another one's key");
        }
    }

    void checkText(QString const& text, std::string const& place)
    {
        seen_.insert(text.toStdString());
        // Texts are in brackets, or among those that are the same in every language.
        static QRegularExpression const known(QStringLiteral("(\\[([^][]|(?1))*\\])|[MGTP]B|Error|Home|Usage Meter"));
        static QRegularExpression const letter(QStringLiteral("\\p{Latin}"));
        if (language_ == "qps" && QString(text).remove(known).contains(letter))
            problems_.insert(place + " has a text that nobody can translate: " + text.toStdString());
    }

    void checkShape(QWidget& widget, std::string const& name)
    {
        if (isCutOff(widget))
            problems_.insert(name + " is cut off");
        // What WCAG 2 asks of a text of ordinary size (1.4.3, and 1.4.6 where much is wanted).
        if (!widget.isWindow()
            && contrastOf(widget) < (appearance_ == Appearance::Light || appearance_ == Appearance::Dark ? 4.5 : 7))
            problems_.insert(name + " is hard to read");
        if (widget.focusPolicy() != Qt::NoFocus && !widget.isWindow()
            && QAccessible::queryAccessibleInterface(&widget)->text(QAccessible::Name).isEmpty())
            problems_.insert(name + " has no name");
        if (widget.isWindow() && (widget.width() > 1000 || widget.height() > 720))
            problems_.insert(name + " is too large");
    }

    void checkNothingWasMissed()
    {
        auto const file = folder.path() / "bundle/qps.lproj/Localizable.strings";
        auto const table = *platform::readPropertyList(*platform::readFile(file));
        for (auto const& [key, value] : table) {
            auto const& text = *value.as<std::string>();
            auto const isPart = [shown = text.substr(0, text.find('%'))](
                                    std::string const& seen) { return seen.find(shown) != std::string::npos; };
            auto const begins = [&name = key](char const* beginning) { return name.starts_with(beginning); };
            // What other programs show.
            std::array const elsewhere { "NOTIFICATION_", "DETAILED_USAGE_WARNING", "DESKTOP_", "METAINFO_" };
            if (std::ranges::none_of(seen_, isPart) && std::ranges::none_of(elsewhere, begins))
                problems_.insert(key + " was not seen");
        }
    }

    void open()
    {
        windows_.reset();
        launch();
        windows_ = std::make_unique<MainWindows>(*outlets, bundle, runLoop, "");
        for (auto* const window : windowsOf(*outlets))
            window->effectiveAppearance.set(appearance_);
        settle();
    }

    void lookAtAlertOf(platform::Window& window)
    {
        EXPECT_NE(alertOn(window), "");
        look();
        window.userAnswered(platform::Alert::dismissedReturn);
    }

    void showFirstStart()
    {
        open();
        look();
        outlets->confirmKeyButton.userClicked();
        lookAtAlertOf(outlets->addKeyWindow);
        outlets->autoRetrieveCodeButton.userClicked();
        look();
        settle();
        lookAtAlertOf(outlets->addKeyWindow);
        loader.replies[lookupAddress] = "<r><key>22</key></r>";
        outlets->autoRetrieveCodeButton.userClicked();
        settle();
        look();
        outlets->usageID.userTyped("{");
        look();
        desktop.hasBrowser = false;
        outlets->getUsageCodeButton.userClicked();
        lookAtAlertOf(outlets->addKeyWindow);
        setReply("11", 10);
        for (auto const* const nickname : { "1", "2", "2" }) {
            outlets->addKeyButton.userClicked();
            outlets->keyNewNickname.userTyped(nickname);
            outlets->usageID.userTyped("11");
            outlets->confirmKeyButton.userClicked();
        }
        lookAtAlertOf(outlets->addKeyWindow);
        outlets->cancelButton.userClicked();
        settle();
    }

    void showUsage()
    {
        windows_->showUsageWindowWithMenu(desktop);
        look();
        outlets->usageLimit.userTyped("100");
        outlets->useConnectionButton.userClicked();
        look();
        settle();
        advance(1s);
        look();
        outlets->updateIntervalPopupButton.userSelected(0);
        settle();
        look();
        failReply("11");
        refresh();
        look();
    }

    void showPreferences()
    {
        controller->showPreferences();
        for (auto const* const cap : { "1,000", "." }) {
            outlets->usageLimit.userTyped(cap);
            look();
        }
        outlets->clearCacheButton.userClicked();
        advance(2s);
        look();
        outlets->removeKeyButton.userClicked();
        lookAtAlertOf(outlets->window);
        desktop.isDiskFull = true;
        outlets->startAtLoginToggle.userToggled(true);
        lookAtAlertOf(outlets->window);
    }

    void showDailyUsage()
    {
        using platform::LoadError;
        auto& detailed = outlets->detailedUsage;
        outlets->detailedUsageButton.userClicked();
        detailed.usageWebView.engine = &page_;
        detailed.window.toggleFullScreen();
        QCoreApplication::processEvents();
        settle();
        // This must work on a screen of any size.
        detailed.window.toggleFullScreen();
        look();
        detailed.exitFullScreen.hidden.set(false);
        for (auto const error : { LoadError::Unreachable, LoadError::NameNotResolved, LoadError::CertificateNotTrusted,
                 LoadError::BadAnswer, LoadError::Stopped, LoadError::PageLost, LoadError::EngineMissing,
                 LoadError::EngineOfAnotherBuild, LoadError::EngineNotIsolated }) {
            detailed.usageWebView.delegate->didFailLoadWithError(error);
            look();
            detailed.window.userAnswered(platform::Alert::firstButtonReturn);
            settle();
        }
        detailed.usageWebView.delegate->didFinishLoadForFrame();
        page_.answer();
        lookAtAlertOf(detailed.window);
    }

    void showConversion()
    {
        defaults.remove(settings::tarvoKeys);
        defaults.set(settings::tarvoId, "33");
        open();
        lookAtAlertOf(outlets->window);
    }

    std::string const language_ = std::get<0>(GetParam());
    Qt::LayoutDirection const direction_ = std::get<1>(GetParam());
    Appearance const appearance_ = std::get<2>(GetParam());
    ScriptedEngine page_;
    std::unique_ptr<MainWindows> windows_;
    std::set<std::string> seen_;
    std::set<std::string> problems_;
};

}

TEST_P(EveryWindowTest, CanBeReadWhole)
{
    showAll();
    if (language_ == "qps")
        checkNothingWasMissed();
    EXPECT_EQ(problems_, std::set<std::string>());
}

INSTANTIATE_TEST_SUITE_P(Settings, EveryWindowTest,
    testing::Values(Setting { "qps", Qt::LeftToRight, Appearance::Light },
        Setting { "qps", Qt::RightToLeft, Appearance::HighContrastDark },
        Setting { "fr", Qt::LeftToRight, Appearance::Dark },
        Setting { "fr", Qt::RightToLeft, Appearance::HighContrastLight }));
