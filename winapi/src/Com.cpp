// Apartments per thread and class objects per apartment.
#include <objbase.h>

#include "Internal.h"

#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

namespace {

using winapi::internal::ClassIdText;
using winapi::internal::Unsupported;
using winapi::internal::Watched;

enum class Apartment { None, SingleThreaded, Multithreaded };

struct ThreadState {
    Apartment apartment = Apartment::None;
    std::size_t joins = 0;
};
thread_local ThreadState thisThread;

struct ClassObject {
    CLSID classId;
    IUnknown* factory;
    DWORD context;
    std::thread::id thread;  // of its single-threaded apartment; default for the multithreaded one
};

struct ComState {
    std::mutex mutex;
    std::size_t joins = 0;
    std::size_t multithreadedJoins = 0;
    std::map<DWORD, ClassObject> classObjects;
    DWORD nextCookie = 1;
};

ComState& Com()
{
    static ComState state;
    return state;
}

struct Releaser {
    void operator()(IUnknown* object) const { object->Release(); }
};

// A thread that joined no apartment belongs to the multithreaded one for as long as any thread holds that one.
bool CurrentApartment(const ComState& com, std::thread::id& thread)
{
    thread = thisThread.apartment == Apartment::SingleThreaded ? std::this_thread::get_id() : std::thread::id();
    return thisThread.apartment != Apartment::None || com.multithreadedJoins > 0;
}

}  // namespace

void winapi::internal::CountCom(Holdings& holdings)
{
    const std::lock_guard lock(Com().mutex);
    holdings.apartmentJoins = Com().joins;
    holdings.classObjects = Com().classObjects.size();
}

void winapi::JoinMultithreadedApartment()
{
    const std::lock_guard lock(Com().mutex);
    ++Com().joins;
    ++Com().multithreadedJoins;
}

void winapi::LeaveMultithreadedApartment()
{
    const std::lock_guard lock(Com().mutex);
    --Com().joins;
    --Com().multithreadedJoins;
}

HRESULT winapi::RunInMultithreadedApartment(const std::function<HRESULT()>& work)
{
    const ThreadState own = std::exchange(thisThread, {Apartment::Multithreaded, 1});
    const HRESULT result = work();
    thisThread = own;
    return result;
}

HRESULT STDAPICALLTYPE CoInitializeEx(LPVOID reserved, DWORD apartment)
{
    if (reserved != nullptr ||
        (apartment & ~static_cast<DWORD>(COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE)) != 0)
        Unsupported("CoInitializeEx", "reserved pointer or apartment flags");
    const Apartment wanted =
        (apartment & COINIT_APARTMENTTHREADED) != 0 ? Apartment::SingleThreaded : Apartment::Multithreaded;
    const wchar_t* const name = wanted == Apartment::Multithreaded ? L"multithreaded" : L"single-threaded";
    return Watched({"CoInitializeEx", {}, name}, [&]() -> HRESULT {
        if (thisThread.joins > 0 && thisThread.apartment != wanted)
            return RPC_E_CHANGED_MODE;
        const std::lock_guard lock(Com().mutex);
        ++Com().joins;
        if (wanted == Apartment::Multithreaded)
            ++Com().multithreadedJoins;
        thisThread.apartment = wanted;
        return ++thisThread.joins == 1 ? S_OK : S_FALSE;
    });
}

void STDAPICALLTYPE CoUninitialize()
{
    if (thisThread.joins == 0)
        Unsupported("CoUninitialize", "a thread that is in no apartment");
    const std::lock_guard lock(Com().mutex);
    const bool multithreaded = thisThread.apartment == Apartment::Multithreaded;
    std::thread::id thread;
    CurrentApartment(Com(), thread);
    for (const auto& [cookie, classObject] : Com().classObjects)
        if (classObject.thread == thread && (multithreaded ? Com().multithreadedJoins : thisThread.joins) == 1)
            Unsupported("CoUninitialize", "an apartment that ends with class objects");
    --Com().joins;
    if (multithreaded)
        --Com().multithreadedJoins;
    if (--thisThread.joins == 0)
        thisThread.apartment = Apartment::None;
}

HRESULT STDAPICALLTYPE CoCreateInstance(REFCLSID classId, IUnknown* outer, DWORD context, REFIID riid, LPVOID* object)
{
    if (outer != nullptr)
        Unsupported("CoCreateInstance", "an outer object");
    if (object == nullptr)
        return E_POINTER;
    *object = nullptr;
    return Watched({"CoCreateInstance", {}, ClassIdText(classId)}, [&]() -> HRESULT {
        IUnknown* registered = nullptr;
        {
            const std::lock_guard lock(Com().mutex);
            std::thread::id thread;
            if (!CurrentApartment(Com(), thread))
                return CO_E_NOTINITIALIZED;
            for (const auto& [cookie, candidate] : Com().classObjects)
                if (candidate.classId == classId && candidate.thread == thread && (candidate.context & context) != 0)
                    registered = candidate.factory;
            if (registered == nullptr)
                return REGDB_E_CLASSNOTREG;
            registered->AddRef();
        }
        void* queried = nullptr;
        const HRESULT result = registered->QueryInterface(__uuidof(IClassFactory), &queried);
        registered->Release();
        if (FAILED(result))
            return result;
        const std::unique_ptr<IClassFactory, Releaser> factory(static_cast<IClassFactory*>(queried));
        return factory->CreateInstance(nullptr, riid, object);
    });
}

HRESULT STDAPICALLTYPE CoRegisterClassObject(REFCLSID classId, IUnknown* factory, DWORD context, DWORD flags,
                                             LPDWORD cookie)
{
    if (context != CLSCTX_INPROC_SERVER || flags != REGCLS_MULTIPLEUSE)
        Unsupported("CoRegisterClassObject", "a context or flags other than a multiple-use server in process");
    const std::lock_guard lock(Com().mutex);
    std::thread::id thread;
    if (!CurrentApartment(Com(), thread))
        return CO_E_NOTINITIALIZED;
    for (const auto& [other, registered] : Com().classObjects)
        if (registered.classId == classId && registered.thread == thread)
            Unsupported("CoRegisterClassObject", "a class that the apartment has already");
    factory->AddRef();
    *cookie = Com().nextCookie++;
    Com().classObjects.emplace(*cookie, ClassObject{classId, factory, context, thread});
    return S_OK;
}

HRESULT STDAPICALLTYPE CoRevokeClassObject(DWORD cookie)
{
    IUnknown* factory = nullptr;
    {
        const std::lock_guard lock(Com().mutex);
        std::thread::id thread;
        if (!CurrentApartment(Com(), thread))
            return CO_E_NOTINITIALIZED;
        const auto found = Com().classObjects.find(cookie);
        if (found == Com().classObjects.end())
            return E_INVALIDARG;
        if (found->second.thread != thread)
            return RPC_E_WRONG_THREAD;
        factory = found->second.factory;
        Com().classObjects.erase(found);
    }
    factory->Release();
    return S_OK;
}
