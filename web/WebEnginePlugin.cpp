// SPDX-License-Identifier: MIT
#include "web/WebPageView.h"
#include "windows/WebPlugin.h"

#include <QLayout>

/// The library's entry point.
class WebEnginePlugin final : public QObject, public WebPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID USAGE_METER_WEB_PLUGIN_ID)
    Q_INTERFACES(WebPlugin)

public:
    std::unique_ptr<platform::WebEngine> makePage(platform::WebView& model, QWidget& place) override
    {
        auto view = std::make_unique<WebPageView>(*model.delegate, place);
        place.layout()->addWidget(view.get());
        return view;
    }
};

#include "WebEnginePlugin.moc"
