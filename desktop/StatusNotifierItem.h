// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/StatusHost.h"
#include "draw/StatusPixmap.h"
#include "platform/StatusItem.h"
#include "windows/OncePerTurn.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QList>
#include <QObject>
#include <QString>

/// (iiay)
QDBusArgument& operator<<(QDBusArgument& argument, StatusPixmap const& pixmap);
QDBusArgument const& operator>>(QDBusArgument const& argument, StatusPixmap& pixmap);

Q_DECLARE_METATYPE(StatusPixmap)

/// (sa(iiay)ss)
struct StatusToolTip {
    QString iconName;
    QList<StatusPixmap> icon;
    QString title;
    QString text;
};

QDBusArgument& operator<<(QDBusArgument& argument, StatusToolTip const& toolTip);
QDBusArgument const& operator>>(QDBusArgument const& argument, StatusToolTip& toolTip);

Q_DECLARE_METATYPE(StatusToolTip)

/// A status item as panels see it over D-Bus, after the org.kde.StatusNotifierItem protocol with the label that the
/// Ayatana indicators added to it. Its slots and signals carry the names of those protocols. The changes of one
/// main-loop turn go out as one set of signals. The model must outlive this object. Main thread only.
class StatusNotifierItem : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Id READ id CONSTANT)
    Q_PROPERTY(QString Category READ category CONSTANT)
    Q_PROPERTY(QString Status READ status CONSTANT)
    Q_PROPERTY(QString Title READ title)
    Q_PROPERTY(QString XAyatanaLabel READ title)
    Q_PROPERTY(QString XAyatanaLabelGuide READ guide)
    Q_PROPERTY(QString IconName READ iconName)
    Q_PROPERTY(QString IconThemePath READ iconThemePath)
    Q_PROPERTY(QList<StatusPixmap> IconPixmap READ iconPixmap)
    Q_PROPERTY(QString IconAccessibleDesc READ accessibleDescription)
    Q_PROPERTY(StatusToolTip ToolTip READ toolTip)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu CONSTANT)
    Q_PROPERTY(QDBusObjectPath Menu READ menu CONSTANT)

public:
    static constexpr char const* path = "/StatusNotifierItem";
    static constexpr char const* menuPath = "/StatusMenu";

    /// An icon of the desktop's theme, which has a symbolic one beside it.
    struct ThemeIcon {
        QString name;
        /// Where it is found if the desktop does not know it.
        QString themePath;
    };

    /// Panels that show the label as text have the icon beside it.
    StatusNotifierItem(platform::StatusItem& item, ThemeIcon icon);

    /// Draws for another panel from now on.
    void setHost(StatusHost const& host);

    QString id() const { return QStringLiteral("usage-meter"); }
    QString category() const { return QStringLiteral("ApplicationStatus"); }
    QString status() const { return QStringLiteral("Active"); }
    /// Cut off with an ellipsis where a panel could not show it.
    QString title() const;
    /// The longest title so far, whose room a panel can keep free so that the items beside it stay where they are.
    QString const& guide() const { return guide_; }
    QString iconName() const;
    QString iconThemePath() const { return host_.look == StatusLook::Label ? icon_.themePath : QString(); }
    QList<StatusPixmap> iconPixmap();
    /// What the item is and says, for panels that read it out.
    QString accessibleDescription() const;
    StatusToolTip toolTip() const;
    bool itemIsMenu() const { return true; }
    QDBusObjectPath menu() const { return QDBusObjectPath(QLatin1String(menuPath)); }

public Q_SLOTS:
    Q_SCRIPTABLE void Activate(int x, int y);
    Q_SCRIPTABLE void SecondaryActivate(int x, int y);
    Q_SCRIPTABLE void ContextMenu(int x, int y);
    Q_SCRIPTABLE void Scroll(int delta, QString const& orientation);
    Q_SCRIPTABLE void ProvideXdgActivationToken(QString const& token);

Q_SIGNALS:
    Q_SCRIPTABLE void NewTitle();
    Q_SCRIPTABLE void NewIcon();
    Q_SCRIPTABLE void NewIconThemePath(QString const& path);
    Q_SCRIPTABLE void NewToolTip();
    Q_SCRIPTABLE void XAyatanaNewLabel(QString const& label, QString const& guide);

    /// The panel leaves it to the program to show the menu.
    void menuRequested();
    /// What the user's next click does may come to the front with this token.
    void activationTokenProvided(QString const& token);

private:
    /// What panels have been told.
    struct Told {
        QString title;
        QString details;
        StatusLook look = StatusLook::Icon;
    };

    QString details() const;
    void update();

    platform::StatusItem& item_;
    ThemeIcon icon_;
    StatusHost host_;
    QString guide_;
    /// Drawn when a panel asks.
    QList<StatusPixmap> pixmaps_;
    QString drawnTitle_;
    Told told_;
    OncePerTurn update_;
    platform::Subscription titleChanges_;
    platform::Subscription menuChanges_;
};
