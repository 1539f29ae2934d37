// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Menu.h"
#include "windows/OncePerTurn.h"

#include <QDBusArgument>
#include <QDBusContext>
#include <QDBusVariant>
#include <QList>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

/// Some properties of one line: (ia{sv}).
struct DBusMenuProperties {
    int id = 0;
    QVariantMap properties;
};

/// The names of properties that went back to their defaults: (ias).
struct DBusMenuRemovedProperties {
    int id = 0;
    QStringList names;
};

/// A line with everything under it: (ia{sv}av).
struct DBusMenuLayout {
    int id = 0;
    QVariantMap properties;
    QList<DBusMenuLayout> children;
};

/// What the user did to a line: (isvu).
struct DBusMenuEvent {
    int id = 0;
    QString name;
    QDBusVariant data;
    uint timestamp = 0;
};

QDBusArgument& operator<<(QDBusArgument& argument, DBusMenuProperties const& line);
QDBusArgument const& operator>>(QDBusArgument const& argument, DBusMenuProperties& line);
QDBusArgument& operator<<(QDBusArgument& argument, DBusMenuRemovedProperties const& line);
QDBusArgument const& operator>>(QDBusArgument const& argument, DBusMenuRemovedProperties& line);
QDBusArgument& operator<<(QDBusArgument& argument, DBusMenuLayout const& line);
QDBusArgument const& operator>>(QDBusArgument const& argument, DBusMenuLayout& line);
QDBusArgument& operator<<(QDBusArgument& argument, DBusMenuEvent const& event);
QDBusArgument const& operator>>(QDBusArgument const& argument, DBusMenuEvent& event);

Q_DECLARE_METATYPE(DBusMenuProperties)
Q_DECLARE_METATYPE(DBusMenuRemovedProperties)
Q_DECLARE_METATYPE(DBusMenuLayout)
Q_DECLARE_METATYPE(DBusMenuEvent)

/// A menu as other programs see it over D-Bus, after the com.canonical.dbusmenu protocol, version 4. Its slots and
/// signals carry the names of that protocol. The changes of one main-loop turn go out as one update, and clicks run
/// from the main loop, never inside the call that brought them. A line that nobody has asked for costs nothing. The
/// menu and its submenus must outlive this object. Main thread only.
class DBusMenu : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
    Q_PROPERTY(uint Version READ version CONSTANT)
    Q_PROPERTY(QString Status READ status CONSTANT)
    Q_PROPERTY(QString TextDirection READ textDirection CONSTANT)
    Q_PROPERTY(QStringList IconThemePath READ iconThemePath CONSTANT)

public:
    explicit DBusMenu(platform::Menu& menu);

    /// For a panel that reads lines from now on and takes only the first underscore of each for a mark, where the
    /// protocol has it take every one.
    void setMarksFirstUnderscoreOnly(bool only) { marksFirstUnderscoreOnly_ = only; }

    uint version() const { return 4; }
    QString status() const { return QStringLiteral("normal"); }
    QString textDirection() const;
    QStringList iconThemePath() const { return {}; }

public Q_SLOTS:
    /// Any negative depth means everything.
    Q_SCRIPTABLE uint GetLayout(
        int parentId, int recursionDepth, QStringList const& propertyNames, DBusMenuLayout& layout);
    /// No ids mean every line that is known; no names mean every property.
    Q_SCRIPTABLE QList<DBusMenuProperties> GetGroupProperties(QList<int> const& ids, QStringList const& propertyNames);
    Q_SCRIPTABLE QDBusVariant GetProperty(int id, QString const& name);
    Q_SCRIPTABLE void Event(int id, QString const& eventId, QDBusVariant const& data, uint timestamp);
    Q_SCRIPTABLE QList<int> EventGroup(QList<DBusMenuEvent> const& events);
    Q_SCRIPTABLE bool AboutToShow(int id);
    Q_SCRIPTABLE QList<int> AboutToShowGroup(QList<int> const& ids, QList<int>& idErrors);

Q_SIGNALS:
    Q_SCRIPTABLE void ItemsPropertiesUpdated(
        QList<DBusMenuProperties> const& updatedProps, QList<DBusMenuRemovedProperties> const& removedProps);
    Q_SCRIPTABLE void LayoutUpdated(uint revision, int parent);

private:
    /// What other programs have been told of a line.
    struct Line {
        std::string title;
        bool hidden = false;
        bool on = false;
        bool isSeparator = false;
        /// Stands in a list with a check mark, so that it has room for one as well.
        bool isChoice = false;
        platform::Menu* submenu = nullptr;
    };

    struct Node {
        Line line;
        /// Nothing for the root.
        std::shared_ptr<platform::MenuItem> item;
        /// Nothing until somebody has asked for the lines under this one.
        std::optional<platform::Subscription> observer;
        std::vector<int> children;
    };

    struct Changes {
        QList<DBusMenuProperties> updated;
        QList<DBusMenuRemovedProperties> removed;
        std::vector<int> layouts;
    };

    static bool isChoice(platform::MenuItem const& item, bool hasMark);
    static Line lineOf(platform::MenuItem const& item, bool hasMark);
    static bool isUnchanged(Line const& told, platform::MenuItem const& item);
    QVariantMap properties(Line const& line, QSet<QString> const& names = {}) const;
    static bool isSameLine(Node const& node, std::shared_ptr<platform::MenuItem> const& item, bool hasMark);

    static bool willShow(Node const& node);

    Node* find(int id);
    /// Finds a line, or answers the present call with an error.
    Node* findOrRefuse(int id);
    int add(std::shared_ptr<platform::MenuItem> item, Line line);
    void remove(int id);
    void list(int id);
    void synchronize(int id, Changes& changes);
    void tell(int id, Line line, Changes& changes);
    DBusMenuLayout layout(int id, int depth, QSet<QString> const& names);
    void queueEvent(int id, QString const& name);
    void click(int id);
    void update();

    std::unordered_map<int, Node> nodes_;
    int nextId_ = 0;
    /// The lines whose submenus have changed since the last update. Those further up have lower ids.
    std::set<int> outdated_;
    uint revision_ = 1;
    bool marksFirstUnderscoreOnly_ = false;
    OncePerTurn update_;
};
