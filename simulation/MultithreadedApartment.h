#pragma once

#include <objbase.h>

#include <functional>
#include <memory>

namespace simulation {

// Holds the multithreaded COM apartment for as long as it lives, and works in it; the threads of its user join none. A
// file of each kind of platform (standin/, windows/) exists.
class MultithreadedApartment {
public:
    // Throws std::runtime_error when there is no joining it.
    MultithreadedApartment();
    MultithreadedApartment(const MultithreadedApartment&) = delete;
    MultithreadedApartment& operator=(const MultithreadedApartment&) = delete;
    ~MultithreadedApartment();

    // Does the work in the apartment and gives what it came to. The work throws nothing.
    HRESULT Run(const std::function<HRESULT()>& work);

private:
    class Member;

    std::unique_ptr<Member> member_;
};

}  // namespace simulation
