// The stand-in's apartment needs no thread, whose company would make every write of the process slower.
#include "simulation/MultithreadedApartment.h"

#include "WinApiControl.h"

namespace simulation {

class MultithreadedApartment::Member {
public:
    Member() { winapi::JoinMultithreadedApartment(); }
    Member(const Member&) = delete;
    Member& operator=(const Member&) = delete;
    ~Member() { winapi::LeaveMultithreadedApartment(); }
};

MultithreadedApartment::MultithreadedApartment() : member_(std::make_unique<Member>()) {}

MultithreadedApartment::~MultithreadedApartment() = default;

HRESULT MultithreadedApartment::Run(const std::function<HRESULT()>& work)
{
    return winapi::RunInMultithreadedApartment(work);
}

}  // namespace simulation
