#pragma once

#include <vector>

namespace ostrevan::app {

/// Told of what makes a list look different. [main-thread]
class change_watcher {
public:
    virtual ~change_watcher() = default;
    /// Tracks were added, removed or read again.
    virtual void on_library_changed() = 0;
    /// Fields of components, such as a rating.
    virtual void on_values_changed() = 0;

protected:
    change_watcher() = default;
    change_watcher(const change_watcher&) = default;
    change_watcher& operator=(const change_watcher&) = default;
};

/// [main-thread]
class changes {
public:
    void add(change_watcher& watcher) { watchers_.push_back(&watcher); }
    void remove(change_watcher& watcher) { std::erase(watchers_, &watcher); }
    void tell(void (change_watcher::*event)()) const {
        for (auto* watcher : std::vector(watchers_)) (watcher->*event)();
    }

private:
    std::vector<change_watcher*> watchers_;
};

}  // namespace ostrevan::app
