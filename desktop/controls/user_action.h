// How what the user does reaches the host: the owner of a page wraps each act, to mark the page's object as
// changed or to show a failure. It must not throw. What code does to the same controls never goes through it.
#pragma once

#include <functional>

namespace banddesk::desktop {

using UserAction = std::function<void(const std::function<void()>&)>;

}  // namespace banddesk::desktop
