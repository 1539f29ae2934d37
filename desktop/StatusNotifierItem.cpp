// SPDX-License-Identifier: MIT
#include "desktop/StatusNotifierItem.h"

#include "windows/Text.h"

#include "draw/StatusIcon.h"
#include "platform/Menu.h"

#include <QCoreApplication>
#include <QDBusMetaType>

#include <utility>

QDBusArgument& operator<<(QDBusArgument& argument, StatusPixmap const& pixmap)
{
    argument.beginStructure();
    argument << pixmap.width << pixmap.height << QByteArray::fromStdString(pixmap.pixels);
    argument.endStructure();
    return argument;
}

QDBusArgument const& operator>>(QDBusArgument const& argument, StatusPixmap& pixmap)
{
    QByteArray pixels;
    argument.beginStructure();
    argument >> pixmap.width >> pixmap.height >> pixels;
    argument.endStructure();
    pixmap.pixels = pixels.toStdString();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, StatusToolTip const& toolTip)
{
    argument.beginStructure();
    argument << toolTip.iconName << toolTip.icon << toolTip.title << toolTip.text;
    argument.endStructure();
    return argument;
}

QDBusArgument const& operator>>(QDBusArgument const& argument, StatusToolTip& toolTip)
{
    argument.beginStructure();
    argument >> toolTip.iconName >> toolTip.icon >> toolTip.title >> toolTip.text;
    argument.endStructure();
    return argument;
}

StatusNotifierItem::StatusNotifierItem(platform::StatusItem& item, ThemeIcon icon)
    : item_(item)
    , icon_(std::move(icon))
    , guide_(title())
    , told_ { title(), details(), host_.look }
    , update_([this] { update(); })
    , titleChanges_(item.title.observeChanges([this](std::string const&) { update_.request(); }))
    , menuChanges_(item.menu().observeChanges([this] { update_.request(); }))
{
    qDBusRegisterMetaType<StatusPixmap>();
    qDBusRegisterMetaType<QList<StatusPixmap>>();
    qDBusRegisterMetaType<StatusToolTip>();
}

QString StatusNotifierItem::title() const { return asPanelLabel(item_.title.get()); }

void StatusNotifierItem::setHost(StatusHost const& host)
{
    host_ = host;
    pixmaps_.clear();
    update_.request();
}

QString StatusNotifierItem::iconName() const
{
    if (host_.look != StatusLook::Label)
        return {};
    return host_.coloursSymbols ? icon_.name + QLatin1String("-symbolic") : icon_.name;
}

QList<StatusPixmap> StatusNotifierItem::iconPixmap()
{
    auto const shown = title();
    if (pixmaps_.isEmpty() || std::exchange(drawnTitle_, shown) != shown) {
        auto const drawn = statusPixmaps(shown, host_.look);
        pixmaps_ = QList<StatusPixmap>(drawn.begin(), drawn.end());
    }
    return pixmaps_;
}

QString StatusNotifierItem::accessibleDescription() const
{
    return QCoreApplication::applicationName() + QLatin1String(": ") + title();
}

StatusToolTip StatusNotifierItem::toolTip() const
{
    return { {}, {}, toQt(item_.title.get()), details().toHtmlEscaped() };
}

void StatusNotifierItem::Activate(int /*x*/, int /*y*/) { Q_EMIT menuRequested(); }

void StatusNotifierItem::SecondaryActivate(int /*x*/, int /*y*/) { Q_EMIT menuRequested(); }

void StatusNotifierItem::ContextMenu(int /*x*/, int /*y*/) { Q_EMIT menuRequested(); }

void StatusNotifierItem::Scroll(int /*delta*/, QString const& /*orientation*/) { }

void StatusNotifierItem::ProvideXdgActivationToken(QString const& token) { Q_EMIT activationTokenProvided(token); }

// The menu's first group says how things are; what follows does something.
QString StatusNotifierItem::details() const
{
    QStringList lines;
    for (auto const& item : item_.menu().items()) {
        if (item->isSeparator)
            break;
        if (!item->hidden.get())
            lines.push_back(toQt(item->title.get()));
    }
    return lines.join(QLatin1Char('\n'));
}

void StatusNotifierItem::update()
{
    auto const before = std::exchange(told_, { title(), details(), host_.look });
    bool const isNewTitle = told_.title != before.title;
    if (isNewTitle) {
        if (told_.title.size() > guide_.size())
            guide_ = told_.title;
        Q_EMIT NewTitle();
        Q_EMIT XAyatanaNewLabel(told_.title, guide_);
    }
    if (told_.look != before.look)
        Q_EMIT NewIconThemePath(iconThemePath());
    // Panels read the icon's description anew with the icon, even where it is empty.
    if (isNewTitle || told_.look != before.look)
        Q_EMIT NewIcon();
    if (isNewTitle || told_.details != before.details)
        Q_EMIT NewToolTip();
}
