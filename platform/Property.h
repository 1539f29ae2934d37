// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace platform {

/// Ends an observation when it goes out of scope. It may outlive the observed object.
class [[nodiscard]] Subscription {
public:
    Subscription() = default;
    explicit Subscription(std::function<void()> end)
        : end_(std::move(end))
    {
    }
    Subscription(Subscription&& other) noexcept
        : end_(std::exchange(other.end_, nullptr))
    {
    }
    Subscription& operator=(Subscription&& other) noexcept
    {
        Subscription(std::move(other)).swap(*this);
        return *this;
    }
    Subscription(Subscription const&) = delete;
    Subscription& operator=(Subscription const&) = delete;
    ~Subscription()
    {
        if (end_)
            end_();
    }

private:
    void swap(Subscription& other) noexcept { std::swap(end_, other.end_); }

    std::function<void()> end_;
};

/// A list of observers. While being called, an observer may end any observation, begin another, announce a newer value,
/// which supersedes this one, or destroy the list itself. Main thread only.
template <typename... Arguments> class Observers {
public:
    using Observer = std::function<void(Arguments...)>;

    Observers() = default;
    Observers(Observers const&) = delete;
    Observers& operator=(Observers const&) = delete;

    Subscription add(Observer observer)
    {
        // Most observed things have no observer, and a long menu has many of them, so the list is made on first use.
        if (!list_)
            list_ = std::make_shared<List>();
        auto entry = std::make_shared<Entry>(std::move(observer));
        list_->entries.push_back(entry);
        return Subscription([weak = std::weak_ptr(list_), entry] {
            entry->ended = true;
            if (auto const list = weak.lock())
                std::erase(list->entries, entry);
        });
    }

    /// False if nothing has ever been observed.
    bool isUsed() const { return list_ != nullptr; }

    void notify(Arguments... arguments) const
    {
        if (!list_)
            return;
        auto const list = list_;
        auto const observers = list->entries;
        auto const notification = ++list->notifications;
        for (auto const& entry : observers) {
            if (list->notifications != notification)
                return;
            if (!entry->ended)
                entry->observer(arguments...);
        }
    }

private:
    struct Entry {
        explicit Entry(Observer newObserver)
            : observer(std::move(newObserver))
        {
        }
        Observer observer;
        bool ended = false;
    };
    struct List {
        std::vector<std::shared_ptr<Entry>> entries;
        unsigned notifications = 0;
    };

    std::shared_ptr<List> list_;
};

/// A value that tells its observers when it changes. Main thread only.
template <typename T> class Property {
public:
    using Observer = std::function<void(T const&)>;

    Property() = default;
    explicit Property(T value)
        : value_(std::move(value))
    {
    }

    T const& get() const { return value_; }

    /// Setting an equal value does not call the observers.
    void set(T value)
    {
        if (value == value_)
            return;
        value_ = std::move(value);
        // The observers get a copy, since one of them may set the next value while this one is being reported.
        if (observers_.isUsed())
            observers_.notify(T(value_));
    }

    /// Calls the observer with the current value at once, then on every change.
    Subscription observe(Observer observer)
    {
        observer(value_);
        return observeChanges(std::move(observer));
    }

    /// Calls the observer on every change from now on.
    Subscription observeChanges(Observer observer) { return observers_.add(std::move(observer)); }

private:
    T value_ {};
    Observers<T const&> observers_;
};

}
