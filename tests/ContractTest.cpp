// What everything here takes for granted about Windows, and what its stand-in must therefore do alike.
#include <windows.h>

#include <gtest/gtest.h>
#include <objbase.h>

#include <random>
#include <set>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

namespace {

LSTATUS Find(HKEY key, LPCWSTR name) { return RegQueryValueExW(key, name, nullptr, nullptr, nullptr, nullptr); }

LSTATUS Create(HKEY key, const std::wstring& path, HKEY* made)
{
    return RegCreateKeyExW(key, path.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, made, nullptr);
}

// Both ways to open a key.
LSTATUS Open(HKEY key, const std::wstring& path)
{
    HKEY opened = nullptr, openedToRead = nullptr;
    const LSTATUS result = RegOpenKeyW(key, path.c_str(), &opened);
    EXPECT_EQ(RegOpenKeyExW(key, path.c_str(), 0, KEY_READ, &openedToRead), result) << path;
    for (const HKEY handle : {opened, openedToRead})
        EXPECT_TRUE(handle == nullptr || RegCloseKey(handle) == ERROR_SUCCESS) << path;
    return result;
}

class RegistryContract : public testing::Test {
protected:
    RegistryContract() { EXPECT_EQ(Create(HKEY_CURRENT_USER, name_, &root_), ERROR_SUCCESS); }
    ~RegistryContract() override
    {
        EXPECT_EQ(RegCloseKey(root_), ERROR_SUCCESS);
        EXPECT_EQ(RegDeleteTreeW(HKEY_CURRENT_USER, name_.c_str()), ERROR_SUCCESS);
    }
    void Add(const std::wstring& path)
    {
        HKEY made = nullptr;
        EXPECT_EQ(Create(root_, path, &made), ERROR_SUCCESS) << path;
        EXPECT_EQ(RegCloseKey(made), ERROR_SUCCESS);
    }

    const std::wstring name_ = L"QovXmlContract" + std::to_wstring(std::random_device()());
    HKEY root_ = nullptr;
};

TEST_F(RegistryContract, ValuesComeBackAsStored)
{
    using Bytes = std::vector<BYTE>;
    const struct {
        DWORD type;
        Bytes given;  // with what happens to be behind the value
        DWORD size;
        Bytes stored;
    } rows[] = {
        {REG_SZ, {'a', 0, 0, 0, 0, 0}, 4, {'a', 0, 0, 0}},
        {REG_SZ, {'a', 0, 'b', 0, 9, 9}, 4, {'a', 0, 'b', 0}},
        {REG_SZ, {'a', 0, 0, 0, 9, 9}, 2, {'a', 0, 0, 0}},  // the terminator right behind it is taken in
        {REG_SZ, {'a', 0, 'b', 9, 9, 9}, 3, {'a', 0, 'b'}},
        {REG_SZ, {9, 9}, 0, {}},
        {REG_BINARY, {1, 0, 0}, 1, {1}},
        {REG_DWORD, {1, 2, 0, 0}, 2, {1, 2}},
        {REG_QWORD, {1, 2, 3, 4, 5, 6, 7, 8}, 8, {1, 2, 3, 4, 5, 6, 7, 8}},
    };
    EXPECT_EQ(Find(root_, L"Value"), ERROR_FILE_NOT_FOUND);
    for (const auto& row : rows) {
        SCOPED_TRACE("row " + std::to_string(&row - rows));
        const auto length = static_cast<DWORD>(row.stored.size());
        EXPECT_EQ(RegSetValueExW(root_, L"Value", 0, row.type, row.given.data(), row.size), ERROR_SUCCESS);
        Bytes buffer(length + 1);
        const auto query = [&](DWORD room, BYTE* data, LSTATUS expected) {
            DWORD type = ~row.type;
            EXPECT_EQ(RegQueryValueExW(root_, L"Value", nullptr, &type, data, &room), expected);
            EXPECT_EQ(std::tuple(type, room), std::tuple(row.type, length));
        };
        query(0, nullptr, ERROR_SUCCESS);
        for (DWORD room = 0; room < length; ++room)
            query(room, buffer.data(), ERROR_MORE_DATA);
        query(length, buffer.data(), ERROR_SUCCESS);
        buffer.pop_back();
        EXPECT_EQ(buffer, row.stored);
    }
}

TEST_F(RegistryContract, NamesAreFoundWithoutRegardToCase)
{
    Add(L"One\\\u00c4\u03b1");
    EXPECT_EQ(RegSetValueExW(root_, L"V\u00e4lue", 0, REG_BINARY, nullptr, 0), ERROR_SUCCESS);
    EXPECT_EQ(Find(root_, L"v\u00c4LUE"), ERROR_SUCCESS);
    EXPECT_EQ(Find(root_, L"Value"), ERROR_FILE_NOT_FOUND);
    for (const LPCWSTR path : {L"One\\\u00c4\u03b1", L"oNE\\\u00e4\u0391", L"one"})
        EXPECT_EQ(Open(root_, path), ERROR_SUCCESS) << path;
    for (const LPCWSTR path : {L"On", L"One\\Two", L"Absent\\Two"})
        EXPECT_EQ(Open(root_, path), ERROR_FILE_NOT_FOUND) << path;
}

TEST(TextContract, OrdinalComparisonTakesCaseAsTheRegistryDoes)
{
    const LPCWSTR lower = L"v\u00e4lue\u03b1", upper = L"V\u00c4LUE\u0391";
    EXPECT_EQ(CompareStringOrdinal(lower, -1, upper, 6, TRUE), CSTR_EQUAL);
    EXPECT_EQ(CompareStringOrdinal(lower, -1, upper, 6, FALSE), CSTR_GREATER_THAN);
    EXPECT_EQ(CompareStringOrdinal(lower, 5, upper, 6, TRUE), CSTR_LESS_THAN);
    EXPECT_EQ(CompareStringOrdinal(L"Value", -1, upper, -1, TRUE), CSTR_LESS_THAN);
}

using Enumerate = LSTATUS (*)(HKEY key, DWORD index, LPWSTR name, LPDWORD length);

std::vector<std::wstring> NamesIn(HKEY key, Enumerate enumerate)
{
    std::vector<std::wstring> names;
    WCHAR text[16];
    LSTATUS result = ERROR_SUCCESS;
    for (DWORD index = 0, length = 16; result == ERROR_SUCCESS; ++index, length = 16) {
        result = enumerate(key, index, text, &length);
        if (result == ERROR_SUCCESS)
            names.emplace_back(text, length);
    }
    EXPECT_EQ(result, ERROR_NO_MORE_ITEMS);
    for (DWORD index = 0; index < names.size(); ++index)
        if (DWORD length = static_cast<DWORD>(names[index].size())) {
            EXPECT_EQ(enumerate(key, index, text, &length), ERROR_MORE_DATA) << "no room for the terminator";
        }
    return names;
}

// Their order is no fact.
TEST_F(RegistryContract, ValuesAreListedEachOnce)
{
    const std::set<std::wstring> names = {L"", L"{b},1", L"a", L"B"};
    for (const std::wstring& name : names)
        EXPECT_EQ(RegSetValueExW(root_, name.c_str(), 0, REG_BINARY, nullptr, 0), ERROR_SUCCESS);
    const std::vector<std::wstring> listed = NamesIn(root_, [](HKEY key, DWORD index, LPWSTR name, LPDWORD length) {
        return RegEnumValueW(key, index, name, length, nullptr, nullptr, nullptr, nullptr);
    });
    EXPECT_EQ(listed.size(), names.size());
    EXPECT_EQ(std::set(listed.begin(), listed.end()), names);
}

TEST_F(RegistryContract, SubkeysAreCountedAndListedInNameOrder)
{
    for (const LPCWSTR name : {L"{b}", L"b", L"A\\Inner", L"C", L"{a}-", L"aa", L"{a}"})
        Add(name);
    const std::vector<std::wstring> names = NamesIn(root_, [](HKEY key, DWORD index, LPWSTR name, LPDWORD length) {
        return RegEnumKeyExW(key, index, name, length, nullptr, nullptr, nullptr, nullptr);
    });
    EXPECT_EQ(names, (std::vector<std::wstring>{L"A", L"aa", L"b", L"C", L"{a}", L"{a}-", L"{b}"}));
    WCHAR text[16];
    DWORD classLength = 16, count = 0;
    (void)RegQueryInfoKeyW(root_, text, &classLength, nullptr, &count, nullptr, nullptr, nullptr, nullptr, nullptr,
                           nullptr, nullptr);
    EXPECT_EQ(count, 7u);
}

TEST_F(RegistryContract, PredefinedKeyIsAnotherOneWhileOverridden)
{
    HKEY substitute = nullptr;
    EXPECT_EQ(Create(root_, name_, &substitute), ERROR_SUCCESS);
    Add(name_ + L"\\Inner\\More");
    EXPECT_EQ(Open(HKEY_LOCAL_MACHINE, L"Inner\\More"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegOverridePredefKey(HKEY_LOCAL_MACHINE, substitute), ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(substitute), ERROR_SUCCESS) << "the handle is not needed any more";
    EXPECT_EQ(Open(HKEY_LOCAL_MACHINE, L"Inner\\More"), ERROR_SUCCESS);
    EXPECT_EQ(RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr), ERROR_SUCCESS);
    EXPECT_EQ(Open(HKEY_LOCAL_MACHINE, L"Inner\\More"), ERROR_FILE_NOT_FOUND);
}

constexpr GUID ClassId{0x0a1b2c3d, 0x4e5f, 0xa6b7, {0x08, 0x19, 0x2a, 0x3b, 0x4c, 0x5d, 0x6e, 0xff}};

TEST(ComContract, ClassIdsAreTexts)
{
    GUID read{};
    const LPCWSTR upper = L"{0A1B2C3D-4E5F-A6B7-0819-2A3B4C5D6EFF}";
    for (const LPCWSTR text : {upper, L"{0a1b2c3d-4e5f-a6b7-0819-2a3b4c5d6eff}"}) {
        EXPECT_EQ(CLSIDFromString(text, &read), S_OK) << text;
        EXPECT_TRUE(read == ClassId) << text;
    }
    for (const LPCWSTR text : {L"", L"{", L"QovXml.Contract.NoSuchProgram", L"0a1b2c3d-4e5f-a6b7-0819-2a3b4c5d6eff",
                               L"{0a1b2c3d-4e5f-a6b7-0819-2a3b4c5d6eff", L"{0a1b2c3d-4e5f-a6b7-0819-2a3b4c5d6eff}x",
                               L"(0a1b2c3d-4e5f-a6b7-0819-2a3b4c5d6eff}", L"{0a1b2c3d-4e5f-a6b7-0819-2a3b4c5d6efg}",
                               L"{0a1b2c3d-4e5f-a6b7_0819-2a3b4c5d6eff}"})
        EXPECT_EQ(CLSIDFromString(text, &read), CO_E_CLASSSTRING) << text;
    LPWSTR written = nullptr;
    EXPECT_EQ(StringFromCLSID(ClassId, &written), S_OK);
    EXPECT_STREQ(written, upper);
    CoTaskMemFree(written);
}

// While no class object is registered.
void ExpectNothingMade(HRESULT expected)
{
    void* object = nullptr;
    EXPECT_EQ(CoCreateInstance(ClassId, nullptr, CLSCTX_ALL, __uuidof(IUnknown), &object), expected);
}

TEST(ComContract, ThreadsStayInTheApartmentTheyJoined)
{
    constexpr HRESULT InApartment = REGDB_E_CLASSNOTREG, InNone = CO_E_NOTINITIALIZED;
    const auto check = [=](DWORD joined, DWORD other, HRESULT ofThreadThatJoinedNone) {
        SCOPED_TRACE(joined);
        ExpectNothingMade(InNone);
        EXPECT_EQ(CoInitializeEx(nullptr, joined), S_OK);
        EXPECT_EQ(CoInitializeEx(nullptr, joined), S_FALSE);
        EXPECT_EQ(CoInitializeEx(nullptr, other), RPC_E_CHANGED_MODE);
        CoUninitialize();
        ExpectNothingMade(InApartment);  // joined twice and left once
        std::thread(ExpectNothingMade, ofThreadThatJoinedNone).join();
        CoUninitialize();
        ExpectNothingMade(InNone);
    };
    std::thread(check, COINIT_MULTITHREADED, COINIT_APARTMENTTHREADED, InApartment).join();
    std::thread(check, COINIT_APARTMENTTHREADED, COINIT_MULTITHREADED, InNone).join();
}

// A factory that gives itself out as its product.
struct Counted final : public IClassFactory {
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override
    {
        const bool known = riid == __uuidof(IUnknown) || riid == __uuidof(IClassFactory);
        *object = known ? this : nullptr;
        references += known ? 1 : 0;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID riid, void** object) override
    {
        return answer != S_OK ? answer : QueryInterface(riid, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

    ULONG references = 0;
    HRESULT answer = S_OK;
};

TEST(ComContract, ClassObjectsServeUntilRevoked)
{
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    Counted factory;
    DWORD cookie = 0;
    EXPECT_EQ(CoRegisterClassObject(ClassId, &factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie), S_OK);
    const ULONG registered = factory.references;
    for (const HRESULT answer : {E_OUTOFMEMORY, S_OK}) {
        factory.answer = answer;
        void* object = &cookie;
        EXPECT_EQ(CoCreateInstance(ClassId, nullptr, CLSCTX_ALL, __uuidof(IUnknown), &object), answer);
        EXPECT_EQ(object, answer == S_OK ? &factory : nullptr);
        EXPECT_EQ(factory.references, registered + (answer == S_OK ? 1 : 0));
    }
    factory.Release();
    EXPECT_EQ(CoRevokeClassObject(cookie), S_OK);
    EXPECT_EQ(factory.references, 0u);
    ExpectNothingMade(REGDB_E_CLASSNOTREG);
    CoUninitialize();
}

}  // namespace
