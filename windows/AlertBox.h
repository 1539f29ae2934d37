// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Window.h"

#include <QMessageBox>

/// Shows an alert as a sheet on a window. Escape and the title bar dismiss it.
class AlertBox final : public QMessageBox {
public:
    /// `usualButton` is the title of the button of an alert that names none.
    AlertBox(platform::Alert const& alert, std::string const& usualButton, QWidget& window);

    /// The return code of the user's answer, once the box is finished.
    int returnCode() const;

private:
    bool event(QEvent* event) override;
    void keepTextsPlain();
    void addButtons(platform::Alert const& alert, std::string const& usualButton);

    bool isDismissed_ = false;
};
