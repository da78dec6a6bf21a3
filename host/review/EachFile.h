#pragma once

#include <array>
#include <cstddef>
#include <future>

namespace host {

// What `look` gives of each of a run's three files, by index. They are looked at at the same time, since large ones
// take a while; `look` must bear that. Throws what the first look that fails throws, when all have ended.
template <class Look>
auto OfEachFile(const Look& look) -> std::array<decltype(look(std::size_t{})), 3>
{
    // Where no thread can be had, a look is taken only when its result is asked for.
    const auto start = [&look](std::size_t index) { return std::async([&look, index] { return look(index); }); };
    std::array looks{start(0), start(1), start(2)};
    return {looks[0].get(), looks[1].get(), looks[2].get()};
}

}  // namespace host
