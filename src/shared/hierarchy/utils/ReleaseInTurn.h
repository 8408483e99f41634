#pragma once

#include <utility>
#include <vector>

namespace Shared::Hierarchy::utils {

/*! Lets go of \a owner, and after it, one by one, of what is handed in meanwhile on this thread: a chain of
 * objects that own each other would need a stack as deep as it. */
template <class Owner>
void releaseInTurn(Owner owner)
{
    thread_local std::vector<Owner> *waiting = nullptr;
    if (waiting) {
        waiting->push_back(std::move(owner));
        return;
    }
    std::vector<Owner> pending;
    waiting = &pending;
    owner = Owner();
    while (!pending.empty()) {
        const Owner next = std::move(pending.back());
        pending.pop_back();
    }
    waiting = nullptr;
}

} // namespace Shared::Hierarchy::utils
