// What everything here takes for granted about Windows. Its stand-in must agree with it on every line.
#include <windows.h>

#include <gtest/gtest.h>
#include <objbase.h>
#include <propidl.h>

#include <cwchar>
#include <functional>
#include <random>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

namespace {

using Bytes = std::vector<BYTE>;

class Key {
public:
    Key() = default;
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;
    ~Key() { Close(); }

    operator HKEY() const { return handle_; }
    PHKEY Put() { return Close(), &handle_; }
    LSTATUS Close() { return handle_ == nullptr ? ERROR_SUCCESS : RegCloseKey(std::exchange(handle_, nullptr)); }

private:
    HKEY handle_ = nullptr;
};

LSTATUS Create(HKEY parent, const std::wstring& path, Key& key, DWORD options = REG_OPTION_VOLATILE)
{
    return RegCreateKeyExW(parent, path.c_str(), 0, nullptr, options, KEY_ALL_ACCESS, nullptr, key.Put(), nullptr);
}

LSTATUS Open(HKEY parent, const std::wstring& path, Key& key) { return RegOpenKeyW(parent, path.c_str(), key.Put()); }

LSTATUS OpenToRead(HKEY parent, const std::wstring& path, Key& key)
{
    return RegOpenKeyExW(parent, path.c_str(), 0, KEY_READ, key.Put());
}

LSTATUS FindKey(HKEY parent, const std::wstring& path)
{
    Key key;
    return Open(parent, path, key);
}

LSTATUS Set(HKEY key, const wchar_t* name)
{
    const BYTE data[] = {1, 2, 3};
    return RegSetValueExW(key, name, 0, REG_BINARY, data, sizeof(data));
}

LSTATUS FindValue(HKEY key, const wchar_t* name)
{
    return RegQueryValueExW(key, name, nullptr, nullptr, nullptr, nullptr);
}

LSTATUS SubKeyAt(HKEY key, DWORD index, WCHAR* name, DWORD& length)
{
    return RegEnumKeyExW(key, index, name, &length, nullptr, nullptr, nullptr, nullptr);
}

LSTATUS Count(HKEY key, WCHAR* className, DWORD* classLength, DWORD* subKeys, DWORD* values)
{
    return RegQueryInfoKeyW(key, className, classLength, nullptr, subKeys, nullptr, nullptr, values, nullptr, nullptr,
                            nullptr, nullptr);
}

class RegistryContract : public testing::Test {
protected:
    RegistryContract()
    {
        std::random_device random;
        for (int part = 0; part < 4; ++part)
            name_ += L"-" + std::to_wstring(random());
        EXPECT_EQ(Create(HKEY_CURRENT_USER, name_, root_), ERROR_SUCCESS);
    }
    ~RegistryContract() override { EXPECT_EQ(RegDeleteTreeW(HKEY_CURRENT_USER, name_.c_str()), ERROR_SUCCESS); }

    std::wstring name_ = L"QovXmlContract";
    Key root_;
};

TEST_F(RegistryContract, ValuesComeBackAsStored)
{
    constexpr BYTE Untouched = 0xEE;
    const struct {
        const char* name;
        DWORD type;
        Bytes given;  // with what happens to be behind the value
        DWORD size;
        Bytes stored;
        BYTE behind;  // in a buffer with room: a text that lacks its terminator is given one
    } rows[] = {
        {"text", REG_SZ, {'a', 0, 0, 0, 9, 9}, 4, {'a', 0, 0, 0}, Untouched},
        {"text and a NUL too many", REG_SZ, {'a', 0, 0, 0, 0, 0, 0, 0}, 6, {'a', 0, 0, 0, 0, 0}, Untouched},
        {"text without terminator", REG_SZ, {'a', 0, 'b', 0, 9, 9}, 4, {'a', 0, 'b', 0}, 0},
        {"text with terminator behind", REG_SZ, {'a', 0, 0, 0, 9, 9}, 2, {'a', 0, 0, 0}, Untouched},
        {"text of odd size", REG_SZ, {'a', 0, 'b', 9, 9, 9}, 3, {'a', 0, 'b'}, 0},
        {"empty text", REG_SZ, {9, 9}, 0, {}, Untouched},
        {"expandable text", REG_EXPAND_SZ, {'%', 0, 9, 9}, 2, {'%', 0}, 0},
        {"texts", REG_MULTI_SZ, {'a', 0, 0, 0, 0, 0, 9, 9}, 6, {'a', 0, 0, 0, 0, 0}, Untouched},
        {"texts with terminator behind", REG_MULTI_SZ, {'a', 0, 0, 0}, 2, {'a', 0, 0, 0}, Untouched},
        {"bytes", REG_BINARY, {1, 2, 3, 4, 0, 0}, 4, {1, 2, 3, 4}, Untouched},
        {"one byte", REG_BINARY, {1, 0, 0}, 1, {1}, Untouched},
        {"no bytes", REG_BINARY, {0, 0}, 0, {}, Untouched},
        {"number", REG_DWORD, {1, 2, 3, 4, 0, 0}, 4, {1, 2, 3, 4}, Untouched},
        {"short number", REG_DWORD, {1, 2, 0, 0}, 2, {1, 2}, Untouched},
        {"long number", REG_QWORD, {1, 2, 3, 4, 5, 6, 7, 8}, 8, {1, 2, 3, 4, 5, 6, 7, 8}, Untouched},
        {"untyped", REG_NONE, {1, 2, 0, 0}, 2, {1, 2}, Untouched},
        {"of no known type", 0x12345, {1, 2, 0, 0}, 2, {1, 2}, Untouched},
    };
    EXPECT_EQ(FindValue(root_, L"Value"), ERROR_FILE_NOT_FOUND);
    for (const auto& row : rows) {
        const auto length = static_cast<DWORD>(row.stored.size());
        const auto query = [&](DWORD room, BYTE* data, LSTATUS expected) {
            SCOPED_TRACE(std::string(row.name) + ", room for " + std::to_string(room));
            DWORD type = ~row.type;
            EXPECT_EQ(RegQueryValueExW(root_, L"Value", nullptr, &type, data, &room), expected);
            EXPECT_EQ(std::tuple(type, room), std::tuple(row.type, length));
        };
        EXPECT_EQ(RegSetValueExW(root_, L"Value", 0, row.type, row.given.data(), row.size), ERROR_SUCCESS) << row.name;
        query(0, nullptr, ERROR_SUCCESS);
        Bytes buffer(16);
        for (DWORD room = 0; room < length; ++room)
            query(room, buffer.data(), ERROR_MORE_DATA);
        for (const DWORD spare : {0u, 4u}) {
            Bytes expected = row.stored;
            expected.resize(length + 2, spare == 0 ? Untouched : row.behind);
            expected.resize(buffer.size(), Untouched);
            buffer.assign(buffer.size(), Untouched);
            query(length + spare, buffer.data(), ERROR_SUCCESS);
            EXPECT_EQ(buffer, expected) << row.name << ", room to spare: " << spare;
        }
        EXPECT_EQ(RegQueryValueExW(root_, L"Value", nullptr, nullptr, buffer.data(), nullptr), ERROR_INVALID_PARAMETER);
    }
}

TEST_F(RegistryContract, NamesAreFoundWithoutRegardToCase)
{
    const struct {
        const wchar_t* path;
        LSTATUS expected = ERROR_SUCCESS;
    } rows[] = {
        {L"One\\Two\\\u00c4\u03b1"},
        {L"oNE\\tWO\\\u00e4\u0391"},
        {L"one\\two"},
        {L"ONE"},
        {L"On", ERROR_FILE_NOT_FOUND},
        {L"Two", ERROR_FILE_NOT_FOUND},
        {L"OneTwo", ERROR_FILE_NOT_FOUND},
        {L"One\\Value", ERROR_FILE_NOT_FOUND},
        {L"Absent\\Two", ERROR_FILE_NOT_FOUND},
    };
    Key key;
    EXPECT_EQ(Create(root_, rows[0].path, key), ERROR_SUCCESS);
    EXPECT_EQ(Create(root_, L"ONE", key), ERROR_SUCCESS) << "the same key";
    EXPECT_EQ(Set(key, L"V\u00e4lue"), ERROR_SUCCESS);
    for (const auto& row : rows) {
        EXPECT_EQ(Open(root_, row.path, key), row.expected) << &row - rows;
        EXPECT_EQ(OpenToRead(root_, row.path, key), row.expected) << &row - rows;
    }
    EXPECT_EQ(Open(root_, L"One", key), ERROR_SUCCESS);
    EXPECT_EQ(FindValue(key, L"v\u00c4LUE"), ERROR_SUCCESS);
    EXPECT_EQ(FindValue(key, L"Value"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(FindValue(key, L"Two"), ERROR_FILE_NOT_FOUND);
}

TEST_F(RegistryContract, SubkeysAreCountedAndListedInNameOrder)
{
    Key key;
    for (const wchar_t* name : {L"{b}", L"b", L"A\\Inner", L"C", L"{a}-", L"aa", L"{a}"})
        EXPECT_EQ(Create(root_, name, key), ERROR_SUCCESS);
    for (const wchar_t* name : {L"First", L"Second"})
        EXPECT_EQ(Set(root_, name), ERROR_SUCCESS);
    DWORD index = 0;
    for (const std::wstring expected : {L"A", L"aa", L"b", L"C", L"{a}", L"{a}-", L"{b}"}) {
        WCHAR name[8] = {};
        auto length = static_cast<DWORD>(expected.size());
        EXPECT_EQ(SubKeyAt(root_, index, name, length), ERROR_MORE_DATA) << "no room for the NUL";
        length = static_cast<DWORD>(expected.size() + 1);
        EXPECT_EQ(SubKeyAt(root_, index++, name, length), ERROR_SUCCESS);
        EXPECT_EQ(std::tuple(std::wstring(name), length), std::tuple(expected, expected.size()));
    }
    for (const DWORD beyond : {0u, 1u}) {
        DWORD length = 0;
        EXPECT_EQ(SubKeyAt(root_, index + beyond, nullptr, length), ERROR_NO_MORE_ITEMS);
    }
    WCHAR className[] = L"class";
    DWORD length = 6;
    DWORD subKeys = 0;
    DWORD values = 0;
    EXPECT_EQ(Count(root_, className, &length, &subKeys, &values), ERROR_SUCCESS);
    EXPECT_EQ(std::tuple(className[0], length, subKeys, values), std::tuple(L'\0', 0u, 7u, 2u));
    EXPECT_EQ(Count(root_, className, nullptr, &subKeys, nullptr), ERROR_INVALID_PARAMETER);
}

TEST_F(RegistryContract, ChildrenOfVolatileKeysAreVolatile)
{
    Key key;
    EXPECT_EQ(Create(root_, L"New", key, 0), ERROR_CHILD_MUST_BE_VOLATILE);
    EXPECT_EQ(Create(root_, L"New\\Inner", key, 0), ERROR_CHILD_MUST_BE_VOLATILE);
    EXPECT_EQ(FindKey(root_, L"New"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Create(root_, L"New", key), ERROR_SUCCESS);
    EXPECT_EQ(Create(root_, L"New", key, 0), ERROR_SUCCESS) << "the key is there";
}

TEST_F(RegistryContract, PredefinedKeyIsAnotherOneWhileOverridden)
{
    Key key;
    EXPECT_EQ(Create(root_, name_ + L"\\Inner", key), ERROR_SUCCESS);
    EXPECT_EQ(Open(HKEY_CURRENT_USER, name_, key), ERROR_SUCCESS);
    EXPECT_EQ(FindKey(HKEY_LOCAL_MACHINE, name_), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegOverridePredefKey(HKEY_LOCAL_MACHINE, key), ERROR_SUCCESS);
    EXPECT_EQ(key.Close(), ERROR_SUCCESS) << "it is not needed any more";
    EXPECT_EQ(FindKey(HKEY_LOCAL_MACHINE, name_ + L"\\Inner"), ERROR_SUCCESS);
    EXPECT_EQ(OpenToRead(HKEY_LOCAL_MACHINE, name_, key), ERROR_SUCCESS);
    EXPECT_EQ(RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr), ERROR_SUCCESS);
    EXPECT_EQ(FindKey(HKEY_LOCAL_MACHINE, name_), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(FindKey(key, L"Inner"), ERROR_SUCCESS) << "it was opened before";
    EXPECT_EQ(RegOverridePredefKey(root_, key), ERROR_INVALID_HANDLE);
}

TEST_F(RegistryContract, HandlesOfDeletedAndClosedKeysServeNothing)
{
    const struct {
        const char* name;
        std::function<LSTATUS(HKEY)> call;
    } rows[] = {
        {"set", [](HKEY key) { return Set(key, L"Value"); }},
        {"query", [](HKEY key) { return FindValue(key, L"Value"); }},
        {"create",
         [](HKEY key) {
             return Key made;
             return Create(key, L"Sub\\Inner", made);
         }},
        {"open", [](HKEY key) { return FindKey(key, L"Sub"); }},
        {"open to read",
         [](HKEY key) {
             Key sub;
             return OpenToRead(key, L"Sub", sub);
         }},
        {"list",
         [](HKEY key) {
             WCHAR name[8];
             DWORD length = 8;
             return SubKeyAt(key, 0, name, length);
         }},
        {"count", [](HKEY key) { return Count(key, nullptr, nullptr, nullptr, nullptr); }},
        {"delete", [](HKEY key) { return RegDeleteTreeW(key, L"Sub"); }},
    };
    Key tree, inner, key;
    EXPECT_EQ(Create(root_, L"Tree", tree), ERROR_SUCCESS);
    EXPECT_EQ(Create(tree, L"Inner", inner), ERROR_SUCCESS);
    for (const auto& row : rows)
        EXPECT_EQ(row.call(inner), ERROR_SUCCESS) << row.name;
    EXPECT_EQ(OpenToRead(tree, L"Inner", key), ERROR_SUCCESS);
    EXPECT_EQ(Set(key, L"Value"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(FindValue(key, L"Value"), ERROR_SUCCESS);

    EXPECT_EQ(RegDeleteTreeW(root_, L"tREE"), ERROR_SUCCESS);
    for (const auto& row : rows) {
        EXPECT_EQ(row.call(tree), ERROR_KEY_DELETED) << row.name;
        EXPECT_EQ(row.call(inner), ERROR_KEY_DELETED) << row.name;
    }
    EXPECT_EQ(FindKey(root_, L"Tree"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegDeleteTreeW(root_, L"Tree"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Create(root_, L"Tree", key), ERROR_SUCCESS);
    EXPECT_EQ(FindKey(key, L"Inner"), ERROR_FILE_NOT_FOUND) << "a new key";
    EXPECT_EQ(inner.Close(), ERROR_SUCCESS);

    const HKEY closed = tree;
    EXPECT_EQ(tree.Close(), ERROR_SUCCESS);
    for (const auto& row : rows) {
        EXPECT_EQ(row.call(closed), ERROR_INVALID_HANDLE) << row.name;
        EXPECT_EQ(row.call(nullptr), ERROR_INVALID_HANDLE) << row.name;
    }
    EXPECT_EQ(RegCloseKey(closed), ERROR_INVALID_HANDLE);
}

constexpr GUID ClassId{0x0a1b2c3d, 0x4e5f, 0xa6b7, {0x08, 0x19, 0x2a, 0x3b, 0x4c, 0x5d, 0x6e, 0xff}};

TEST(TextContract, ClassIdsAreReadAndWritten)
{
    const GUID empty{};
    const struct {
        LPCWSTR text;
        const GUID* read;  // null: refused
    } rows[] = {
        {L"{0A1B2C3D-4E5F-A6B7-0819-2A3B4C5D6EFF}", &ClassId},
        {L"{0a1b2c3d-4e5f-a6b7-0819-2a3b4c5d6eff}", &ClassId},
        {nullptr, &empty},
        {L"", nullptr},
        {L"{", nullptr},
        {L"0a1b2c3d-4e5f-a6b7-0819-2a3b4c5d6eff", nullptr},
        {L"{0a1b2c3d-4e5f-a6b7-0819-2a3b4c5d6eff", nullptr},
        {L"{0a1b2c3d-4e5f-a6b7-0819-2a3b4c5d6eff]", nullptr},
        {L"(0a1b2c3d-4e5f-a6b7-0819-2a3b4c5d6eff}", nullptr},
        {L"{0a1b2c3d-4e5f-a6b7-0819-2a3b4c5d6eff}x", nullptr},
        {L"{0a1b2c3d-4e5f-a6b7-0819-2a3b4c5d6ef}", nullptr},
        {L"{0a1b2c3d-4e5f-a6b7-0819-2a3b4c5d6efg}", nullptr},
        {L"{0a1b2c3d-4e5f-a6b7_0819-2a3b4c5d6eff}", nullptr},
        {L"{0a1b2c3d-4e5f-a6b70-819-2a3b4c5d6eff}", nullptr},
        {L"QovXml.Contract.NoSuchProgram", nullptr},
    };
    for (const auto& row : rows) {
        GUID read = __uuidof(IUnknown);
        EXPECT_EQ(CLSIDFromString(row.text, &read), row.read != nullptr ? S_OK : CO_E_CLASSSTRING) << &row - rows;
        if (row.read != nullptr) {
            EXPECT_TRUE(read == *row.read) << &row - rows;
        }
    }
    LPWSTR text = nullptr;
    EXPECT_EQ(StringFromCLSID(ClassId, &text), S_OK);
    EXPECT_EQ(std::wstring(text), rows[0].text);
    CoTaskMemFree(text);
    CoTaskMemFree(nullptr);
}

TEST(TextContract, ClearedValuesAreEmpty)
{
    for (const VARTYPE type : {VT_EMPTY, VT_UI4, VT_LPWSTR}) {
        PROPVARIANT value;
        PropVariantInit(&value);
        EXPECT_EQ(value.vt, VT_EMPTY);
        value.vt = type;
        if (type == VT_LPWSTR) {
            value.pwszVal = static_cast<LPWSTR>(CoTaskMemAlloc(2 * sizeof(WCHAR)));
            std::wcscpy(value.pwszVal, L"a");
        }
        for (int time = 0; time < 2; ++time) {
            EXPECT_EQ(PropVariantClear(&value), S_OK);
            EXPECT_EQ(value.vt, VT_EMPTY);
        }
    }
}

void OnThread(const std::function<void()>& action) { std::thread(action).join(); }

HRESULT Instantiate(REFIID riid = __uuidof(IUnknown), void** object = nullptr)
{
    void* unused = nullptr;
    return CoCreateInstance(ClassId, nullptr, CLSCTX_ALL, riid, object == nullptr ? &unused : object);
}

// Tells whether the thread is in an apartment, as far as nothing is registered there.
constexpr HRESULT Inside = REGDB_E_CLASSNOTREG;
constexpr HRESULT Outside = CO_E_NOTINITIALIZED;

TEST(ComContract, ThreadIsInOneApartmentUntilItLeft)
{
    for (const auto& [wanted, other] : {std::pair<DWORD, DWORD>(COINIT_MULTITHREADED, COINIT_APARTMENTTHREADED),
                                        std::pair<DWORD, DWORD>(COINIT_APARTMENTTHREADED, COINIT_MULTITHREADED)}) {
        OnThread([wanted = wanted, other = other] {
            SCOPED_TRACE(wanted);
            EXPECT_EQ(Instantiate(), Outside);
            EXPECT_EQ(CoInitializeEx(nullptr, wanted), S_OK);
            EXPECT_EQ(CoInitializeEx(nullptr, wanted), S_FALSE);
            EXPECT_EQ(CoInitializeEx(nullptr, other), RPC_E_CHANGED_MODE);
            CoUninitialize();
            EXPECT_EQ(Instantiate(), Inside);
            // Only the multithreaded apartment takes in threads that joined none.
            OnThread([wanted] { EXPECT_EQ(Instantiate(), wanted == COINIT_MULTITHREADED ? Inside : Outside); });
            OnThread([] {
                EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
                CoUninitialize();
            });
            CoUninitialize();
            EXPECT_EQ(Instantiate(), Outside);
            OnThread([] { EXPECT_EQ(Instantiate(), Outside); });
            EXPECT_EQ(CoInitializeEx(nullptr, other), S_OK);
            CoUninitialize();
        });
    }
}

// A class object and what it makes.
class Counted final : public IClassFactory {
public:
    explicit Counted(Counted* product = nullptr) : product_(product) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override
    {
        const bool known = riid == __uuidof(IUnknown) || (product_ != nullptr && riid == __uuidof(IClassFactory));
        *object = known ? this : nullptr;
        return known ? (AddRef(), S_OK) : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID riid, void** object) override
    {
        const HRESULT result = FAILED(answer) ? answer : product_->QueryInterface(riid, object);
        return FAILED(result) ? result : answer;
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

    ULONG references = 0;
    HRESULT answer = S_OK;

private:
    Counted* product_;
};

HRESULT Register(IUnknown& classObject, DWORD& cookie)
{
    return CoRegisterClassObject(ClassId, &classObject, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie);
}

TEST(ComContract, ClassObjectsServeTheirApartment)
{
    constexpr auto OwnFailure = static_cast<HRESULT>(0x80041234);
    for (const DWORD apartment : {COINIT_MULTITHREADED, COINIT_APARTMENTTHREADED}) {
        OnThread([apartment] {
            SCOPED_TRACE(apartment);
            Counted product, factory(&product);
            DWORD cookie = 0;
            EXPECT_EQ(Register(factory, cookie), CO_E_NOTINITIALIZED);
            EXPECT_EQ(CoInitializeEx(nullptr, apartment), S_OK);
            EXPECT_EQ(Register(factory, cookie), S_OK);
            const ULONG registered = factory.references;
            EXPECT_GT(registered, 0u);
            for (const auto& [riid, answer, expected] : {std::tuple(__uuidof(IUnknown), S_OK, S_OK),
                                                         {__uuidof(IUnknown), S_FALSE, S_OK},
                                                         {__uuidof(IUnknown), E_OUTOFMEMORY, E_OUTOFMEMORY},
                                                         {__uuidof(IUnknown), OwnFailure, OwnFailure},
                                                         {__uuidof(IClassFactory), S_OK, E_NOINTERFACE}}) {
                factory.answer = answer;
                void* object = &factory;
                EXPECT_EQ(Instantiate(riid, &object), expected);
                EXPECT_EQ(object, SUCCEEDED(expected) ? &product : nullptr);
                EXPECT_EQ(product.references, SUCCEEDED(expected) ? 1u : 0u);
                EXPECT_EQ(factory.references, registered);
                product.references = 0;
            }
            EXPECT_EQ(CoCreateInstance(ClassId, nullptr, CLSCTX_ALL, __uuidof(IUnknown), nullptr), E_POINTER);
            for (const DWORD other : {COINIT_MULTITHREADED, COINIT_APARTMENTTHREADED}) {
                OnThread([apartment, other, cookie] {
                    EXPECT_EQ(CoInitializeEx(nullptr, other), S_OK);
                    const bool same = apartment == COINIT_MULTITHREADED && other == COINIT_MULTITHREADED;
                    EXPECT_EQ(Instantiate(), same ? S_OK : REGDB_E_CLASSNOTREG) << other;
                    if (!same) {
                        EXPECT_EQ(CoRevokeClassObject(cookie), RPC_E_WRONG_THREAD) << other;
                    }
                    CoUninitialize();
                });
            }
            EXPECT_EQ(CoRevokeClassObject(cookie), S_OK);
            EXPECT_EQ(CoRevokeClassObject(cookie), E_INVALIDARG);
            EXPECT_EQ(factory.references, 0u);
            EXPECT_EQ(Instantiate(), REGDB_E_CLASSNOTREG);
            EXPECT_EQ(Register(product, cookie), S_OK);
            EXPECT_EQ(Instantiate(), E_NOINTERFACE) << "not a class factory";
            EXPECT_EQ(CoRevokeClassObject(cookie), S_OK);
            CoUninitialize();
        });
    }
}

TEST(VersionContract, LowerFieldsCountWhereHigherOnesAreEqual)
{
    constexpr DWORD Fields = VER_MAJORVERSION | VER_MINORVERSION | VER_SERVICEPACKMAJOR;
    ULONGLONG atLeast = 0;
    for (const DWORD field : {VER_MAJORVERSION, VER_MINORVERSION, VER_SERVICEPACKMAJOR})
        atLeast = VerSetConditionMask(atLeast, field, VER_GREATER_EQUAL);
    const struct {
        DWORD major;
        DWORD minor;
        WORD servicePack;
        bool reached;
    } rows[] = {{5, 1, 0, true}, {5, 99, 99, true}, {99, 0, 0, false}};
    for (const auto& row : rows) {
        OSVERSIONINFOEXW version{};
        version.dwOSVersionInfoSize = sizeof(version);
        version.dwMajorVersion = row.major;
        version.dwMinorVersion = row.minor;
        version.wServicePackMajor = row.servicePack;
        SetLastError(ERROR_SUCCESS);
        EXPECT_EQ(VerifyVersionInfoW(&version, Fields, atLeast) != FALSE, row.reached) << row.major;
        if (!row.reached) {
            EXPECT_EQ(GetLastError(), DWORD{ERROR_OLD_WIN_VERSION});
        }
    }
}

}  // namespace
