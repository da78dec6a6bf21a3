// Windows counts threads as an apartment's members: one of its own joins it and does the work.
#include "simulation/MultithreadedApartment.h"

#include <condition_variable>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

namespace simulation {

class MultithreadedApartment::Member {
public:
    Member() : thread_([this] { Serve(); })
    {
        if (const HRESULT joined = Do({}); FAILED(joined)) {
            thread_.join();
            throw std::runtime_error("The multithreaded apartment cannot be joined: " + std::to_string(joined));
        }
    }
    Member(const Member&) = delete;
    Member& operator=(const Member&) = delete;
    ~Member()
    {
        {
            const std::lock_guard lock(mutex_);
            ending_ = true;
        }
        changed_.notify_all();
        thread_.join();
    }

    // Without work: what joining came to.
    HRESULT Do(const std::function<HRESULT()>& work)
    {
        std::unique_lock lock(mutex_);
        work_ = work;
        pending_ = true;
        changed_.notify_all();
        changed_.wait(lock, [this] { return !pending_; });
        return result_;
    }

private:
    void Serve()
    {
        const HRESULT joined = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        std::unique_lock lock(mutex_);
        do {
            changed_.wait(lock, [this] { return pending_ || ending_; });
            if (pending_)
                result_ = work_ ? work_() : joined;
            pending_ = false;
            changed_.notify_all();
        } while (!ending_ && SUCCEEDED(joined));
        lock.unlock();
        if (SUCCEEDED(joined))
            CoUninitialize();
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    std::function<HRESULT()> work_;
    bool pending_ = false;
    bool ending_ = false;
    HRESULT result_ = S_OK;
    std::thread thread_;  // last: it uses the others
};

MultithreadedApartment::MultithreadedApartment() : member_(std::make_unique<Member>()) {}

MultithreadedApartment::~MultithreadedApartment() = default;

HRESULT MultithreadedApartment::Run(const std::function<HRESULT()>& work) { return member_->Do(work); }

}  // namespace simulation
