// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/TemporaryFolder.h"

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QProcess>
#include <QVariant>

#include <string>
#include <vector>

/// Where assistive technologies find an object of a program: (so)
struct AccessiblePlace {
    QString service;
    QDBusObjectPath path;
};

Q_DECLARE_METATYPE(AccessiblePlace)

/// What they are told of it.
struct Accessible {
    AccessiblePlace place;
    std::string role;
    std::string name;
    std::string description;
    bool isShowing = false;
    bool isFocusable = false;
    bool isFocused = false;
    /// The keys of its first action.
    std::string keys;
};

/// Starts an accessibility bus for the session, and reads other programs' windows over it as a screen reader does.
class AccessibleTree {
public:
    AccessibleTree();
    ~AccessibleTree();

    /// All that shows in the window of this title, itself first; empty as long as no program shows such a window.
    std::vector<Accessible> window(std::string const& title) const;
    /// A number of an object that has a value, such as "CurrentValue".
    double number(Accessible const& accessible, char const* property) const;
    /// Does what the object is there for.
    void act(Accessible const& accessible) const;
    /// Puts a text into a field in place of what is there.
    void write(Accessible const& accessible, std::string const& text) const;

private:
    QVariant call(AccessiblePlace const& place, char const* interface, char const* method,
        QVariantList const& arguments = {}) const;
    QVariant property(AccessiblePlace const& place, char const* interface, char const* name) const;
    std::vector<AccessiblePlace> children(AccessiblePlace const& place) const;
    Accessible read(AccessiblePlace const& place) const;
    void addShowing(std::vector<Accessible>& found, AccessiblePlace const& place) const;

    /// Of this tree's bus, beside those of other tests.
    TemporaryFolder runtime_;
    QProcess launcher_;
    QDBusConnection bus_;
};
