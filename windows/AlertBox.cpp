// SPDX-License-Identifier: MIT
#include "windows/AlertBox.h"

#include "windows/Mnemonics.h"
#include "windows/Text.h"

#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>

namespace {

constexpr char const* returnCodeProperty = "returnCode";
// In pixels. However much an alert has to say, its buttons stay on the screen.
constexpr int maximumDetailsHeight = 240;

QMessageBox::Icon iconOf(platform::Alert::Style style)
{
    switch (style) {
    case platform::Alert::Style::Informational:
        return QMessageBox::Information;
    case platform::Alert::Style::Critical:
        return QMessageBox::Critical;
    case platform::Alert::Style::Warning:
        break;
    }
    return QMessageBox::Warning;
}

}

AlertBox::AlertBox(platform::Alert const& alert, std::string const& usualButton, QWidget& window)
    : QMessageBox(&window)
{
    setWindowModality(Qt::WindowModal);
    setIcon(iconOf(alert.style));
    setText(toQt(alert.messageText));
    setAccessibleName(text());
    setInformativeText(toQt(alert.informativeText));
    keepTextsPlain();
    addButtons(alert, usualButton);
    assignMnemonics(*this);
}

void AlertBox::keepTextsPlain()
{
    // The box's own text format does not apply to its informative text.
    for (auto* const label : findChildren<QLabel*>())
        label->setTextFormat(Qt::PlainText);
    if (auto* const details = findChild<QLabel*>(QStringLiteral("qt_msgbox_informativelabel")))
        details->setMaximumHeight(maximumDetailsHeight);
}

void AlertBox::addButtons(platform::Alert const& alert, std::string const& usualButton)
{
    auto titles = alert.buttons;
    if (titles.empty())
        titles.push_back(usualButton);
    auto const& preferred = alert.isDestructive ? titles.back() : titles.front();
    int returnCode = platform::Alert::firstButtonReturn;
    for (auto const& title : titles) {
        auto* const button = addButton(asLabel(title), &title == &titles.front() ? AcceptRole : RejectRole);
        button->setProperty(returnCodeProperty, returnCode++);
        if (&title == &preferred)
            setDefaultButton(button);
        setEscapeButton(button);
    }
}

int AlertBox::returnCode() const
{
    auto const* const clicked = clickedButton();
    // If there is only one button, the toolkit treats Escape as pressing it.
    bool const isDismissed = !clicked || (buttons().size() == 1 && isDismissed_);
    return isDismissed ? platform::Alert::dismissedReturn : clicked->property(returnCodeProperty).toInt();
}

bool AlertBox::event(QEvent* event)
{
    bool const isEscape
        = event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->matches(QKeySequence::Cancel);
    if (isEscape || event->type() == QEvent::Close)
        isDismissed_ = true;
    return QMessageBox::event(event);
}
