// SPDX-License-Identifier: MIT
// Whether every text can be read: its contrast with its ground, measured on the pixels of every window in every look.
#include "windows/Contrast.h"
#include "draw/StatusIcon.h"
#include "tests/support/EveryWindowTest.h"
#include "windows/MenuMirror.h"

namespace {

using platform::Appearance;

// What WCAG 2 asks of a text of ordinary size (1.4.3, and 1.4.6 where much is wanted).
constexpr double enough = 4.5;
constexpr double high = 7;
// Letters are drawn so much larger that their strokes have pixels of their colour alone.
constexpr int magnification = 2;

QImage pictureOf(QWidget& window)
{
    QImage picture(window.size() * magnification, QImage::Format_RGB32);
    picture.setDevicePixelRatio(magnification);
    window.render(&picture);
    return picture;
}

/// Takes the letters from a window, and leaves all else where it is.
class Wordless {
public:
    explicit Wordless(QWidget& window)
    {
        hide(window);
        for (auto* const widget : window.findChildren<QWidget*>())
            hide(*widget);
    }
    ~Wordless()
    {
        for (auto const& [widget, palette] : palettes_)
            widget->setPalette(palette);
    }
    Wordless(Wordless const&) = delete;
    Wordless& operator=(Wordless const&) = delete;

private:
    void hide(QWidget& widget)
    {
        auto palette = widget.palette();
        palettes_.emplace_back(&widget, palette);
        for (auto const role : { QPalette::WindowText, QPalette::ButtonText, QPalette::Text, QPalette::PlaceholderText,
                 QPalette::HighlightedText, QPalette::ToolTipText })
            palette.setColor(role, Qt::transparent);
        widget.setPalette(palette);
    }

    std::vector<std::pair<QWidget*, QPalette>> palettes_;
};

QImage wordlessPictureOf(QWidget& window)
{
    Wordless const wordless(window);
    return pictureOf(window);
}

/// A text on the screen, and where in its widget.
struct Words {
    QString text;
    QRect place;
};

// Frames are drawn in the colour of letters too, and stay out.
QRect insideFrame(QWidget const& widget) { return widget.rect().adjusted(4, 4, -4, -4); }

Words wordsOf(QCheckBox const& box)
{
    QStyleOptionButton option;
    option.initFrom(&box);
    return { box.text(), box.style()->subElementRect(QStyle::SE_CheckBoxContents, &option, &box) };
}

Words wordsOf(QComboBox const& box)
{
    QStyleOptionComboBox option;
    option.initFrom(&box);
    auto const place = box.style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, &box);
    return { box.currentIndex() < 0 ? box.placeholderText() : box.currentText(), place };
}

std::vector<Words> linesOf(QWidget const& menu)
{
    std::vector<Words> lines;
    for (auto* const action : menu.actions()) {
        auto const* const asMenu = qobject_cast<QMenu const*>(&menu);
        auto const* const asBar = qobject_cast<QMenuBar const*>(&menu);
        // Without a check mark and an arrow at the ends.
        auto const place
            = asMenu ? asMenu->actionGeometry(action).adjusted(24, 0, -24, 0) : asBar->actionGeometry(action);
        if (action->isVisible() && !action->isSeparator())
            lines.push_back({ action->text(), place });
    }
    return lines;
}

std::vector<Words> rowsOf(QAbstractItemView const& list)
{
    std::vector<Words> rows;
    for (int row = 0; row < list.model()->rowCount(); ++row) {
        auto const index = list.model()->index(row, 0);
        auto const place = list.visualRect(index) & list.viewport()->rect();
        if (!place.isEmpty())
            rows.push_back({ index.data().toString(), place.translated(list.viewport()->pos()) });
    }
    return rows;
}

std::vector<Words> wordsOf(QWidget const& widget)
{
    if (auto const* const label = qobject_cast<QLabel const*>(&widget))
        return { { label->text(), label->contentsRect() } };
    if (auto const* const box = qobject_cast<QCheckBox const*>(&widget))
        return { wordsOf(*box) };
    if (auto const* const button = qobject_cast<QAbstractButton const*>(&widget))
        return { { button->text(), insideFrame(widget) } };
    if (auto const* const input = qobject_cast<QLineEdit const*>(&widget))
        return { { input->text().isEmpty() ? input->placeholderText() : input->text(), insideFrame(widget) } };
    if (auto const* const box = qobject_cast<QComboBox const*>(&widget))
        return { wordsOf(*box) };
    if (auto const* const list = qobject_cast<QAbstractItemView const*>(&widget))
        return rowsOf(*list);
    if (qobject_cast<QMenu const*>(&widget) || qobject_cast<QMenuBar const*>(&widget))
        return linesOf(widget);
    return {};
}

bool isFaded(QWidget const& widget)
{
    auto const* const effect = qobject_cast<QGraphicsOpacityEffect*>(widget.graphicsEffect());
    return effect && effect->isEnabled() && effect->opacity() < 1;
}

class ContrastTest : public EveryWindowTest {
protected:
    void measure(Appearance appearance, double limit)
    {
        appearance_ = appearance;
        limit_ = limit;
        showAll();
        showLists();
        RecordProperty("lowest", std::to_string(lowest_));
    }

    void look() override
    {
        QCoreApplication::processEvents();
        for (auto* const window : QApplication::topLevelWidgets()) {
            if (window->isVisible() && !window->size().isEmpty())
                lookAt(*window);
        }
    }

private:
    void lookAt(QWidget& window)
    {
        int const measuredBefore = measured_;
        auto const written = pictureOf(window);
        auto const wordless = wordlessPictureOf(window);
        auto widgets = window.findChildren<QWidget*>();
        widgets.push_back(&window);
        for (auto const* const widget : widgets) {
            // A sheet is its window's child, but has a picture of its own.
            if (widget->window() != &window || !widget->isVisible() || isFaded(*widget))
                continue;
            for (auto const& [text, place] : wordsOf(*widget)) {
                if (text.trimmed().isEmpty())
                    continue;
                QRect const inWindow(widget->mapTo(&window, place.topLeft()), place.size());
                double const found = strongest(written, wordless, inWindow);
                EXPECT_GE(found, limit_) << widget->objectName().toStdString() << ": " << text.toStdString();
                lowest_ = std::min(lowest_, found);
                ++measured_;
            }
        }
        EXPECT_GT(measured_, measuredBefore) << window.objectName().toStdString();
    }

    // That of the pixels which are wholly the letters' own. A text that cannot be told from its ground has none.
    static double strongest(QImage const& written, QImage const& wordless, QRect const& place)
    {
        QRect const pixels(place.topLeft() * magnification, place.size() * magnification);
        double found = 1;
        auto const inPicture = pixels & written.rect();
        for (int y = inPicture.top(); y <= inPicture.bottom(); ++y) {
            for (int x = inPicture.left(); x <= inPicture.right(); ++x) {
                if (written.pixel(x, y) != wordless.pixel(x, y))
                    found = std::max(found, contrast(written.pixel(x, y), wordless.pixel(x, y)));
            }
        }
        return found;
    }

    // What opens at a click, with the line that the pointer is on.
    void showLists()
    {
        MenuMirror menu(outlets->dropDownMenu, runLoop);
        menu.popup({});
        menu.setActiveAction(menu.actions().constFirst());
        QToolTip::showText({}, QStringLiteral("1"));
        look();
        for (auto* const line : menu.actions()) {
            if (line->menu())
                line->menu()->popup({});
        }
        look();
        menu.close();
        QList<QComboBox*> boxes;
        for (auto* const window : QApplication::topLevelWidgets())
            boxes += window->findChildren<QComboBox*>();
        for (auto* const box : boxes) {
            if (!box->isVisible())
                continue;
            box->showPopup();
            look();
            box->hidePopup();
        }
    }

    double limit_ = 0;
    double lowest_ = std::numeric_limits<double>::max();
    int measured_ = 0;
};

}

TEST_F(ContrastTest, EveryTextCanBeReadInLight) { measure(Appearance::Light, enough); }
TEST_F(ContrastTest, EveryTextCanBeReadInDark) { measure(Appearance::Dark, enough); }
TEST_F(ContrastTest, EveryTextStandsOutInHighContrast) { measure(Appearance::HighContrastLight, high); }
TEST_F(ContrastTest, EveryTextStandsOutInDarkHighContrast) { measure(Appearance::HighContrastDark, high); }

TEST_F(ContrastTest, AnyAccentColorIsReadable)
{
    for (auto const appearance : { Appearance::Light, Appearance::Dark }) {
        for (auto const color : { Qt::white, Qt::black, Qt::yellow, Qt::blue, Qt::red, Qt::gray }) {
            QColor const accent(color);
            auto const part = [](int value) { return static_cast<std::uint8_t>(value); };
            applyLook(
                { appearance, platform::Color { part(accent.red()), part(accent.green()), part(accent.blue()) } });
            auto const palette = QApplication::palette();
            EXPECT_GE(contrast(palette.highlight().color(), palette.highlightedText().color()), enough) << color;
            // A shade for both leaves rounding no room.
            EXPECT_GE(contrast(palette.highlight().color(), palette.window().color()), 2.9) << color;
        }
    }
}

TEST(StatusIconContrast, LettersCanBeReadOnAnyPanel)
{
    for (auto const panel : { Qt::white, Qt::black, Qt::gray }) {
        QImage shown(64, 64, QImage::Format_RGB32);
        shown.fill(panel);
        QPainter painter(&shown);
        painter.drawImage(0, 0, drawStatusIcon(QStringLiteral("57.3GB"), 64));
        painter.end();
        // The plate beside the letters, and the lightest that stands on it.
        QColor const plate = shown.pixelColor(32, 1);
        double found = 1;
        for (int y = 4; y < 60; ++y) {
            for (int x = 4; x < 60; ++x)
                found = std::max(found, contrast(plate, shown.pixelColor(x, y)));
        }
        EXPECT_GE(found, high);
    }
}
