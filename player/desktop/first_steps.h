#pragma once

#include <QWidget>
#include <functional>

namespace ostrevan::desktop {

/// Instead of an empty list: says what to do.
class first_steps final : public QWidget {
public:
    first_steps();

    std::function<void()> on_add_folder;
};

}  // namespace ostrevan::desktop
