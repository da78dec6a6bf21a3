#include "host/files/NewFile.h"

#include "host/files/windows/Handle.h"

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace host::platform {

namespace {

constexpr SECURITY_INFORMATION OwnerAndGroup = OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION;

HANDLE AsHandle(std::intptr_t handle) { return reinterpret_cast<HANDLE>(handle); }

std::intptr_t AsNumber(HANDLE handle) { return reinterpret_cast<std::intptr_t>(handle); }

// Owner, group and ACL of a file, as one relocatable block.
class Security {
public:
    explicit Security(HANDLE file)
    {
        constexpr SECURITY_INFORMATION All = OwnerAndGroup | DACL_SECURITY_INFORMATION;
        DWORD size = 0;
        if (!GetKernelObjectSecurity(file, All, nullptr, 0, &size))
            Check(GetLastError() == ERROR_INSUFFICIENT_BUFFER);
        bytes_.resize(size);
        Check(GetKernelObjectSecurity(file, All, Get(), size, &size));
        // Says that inherited entries stay marked so.
        SetSecurityDescriptorControl(Get(), SE_DACL_AUTO_INHERIT_REQ, SE_DACL_AUTO_INHERIT_REQ);
    }

    [[nodiscard]] PSECURITY_DESCRIPTOR Get() { return bytes_.data(); }
    [[nodiscard]] bool HasOwnerAndGroupOf(Security& other)
    {
        return EqualSid(Sid(GetSecurityDescriptorOwner), other.Sid(GetSecurityDescriptorOwner)) &&
               EqualSid(Sid(GetSecurityDescriptorGroup), other.Sid(GetSecurityDescriptorGroup));
    }

private:
    template <class Getter>
    PSID Sid(Getter getter)
    {
        PSID sid = nullptr;
        BOOL defaulted = FALSE;
        Check(getter(Get(), &sid, &defaulted) && sid != nullptr);
        return sid;
    }

    std::vector<std::byte> bytes_;
};

Security SecurityOf(const std::string& path) { return Security(Open(path, READ_CONTROL).Get()); }

bool TakeSecurity(HANDLE file, Security& wanted)
{
    Security facts(file);
    const bool owned = facts.HasOwnerAndGroupOf(wanted) || SetKernelObjectSecurity(file, OwnerAndGroup, wanted.Get());
    return owned && SetKernelObjectSecurity(file, DACL_SECURITY_INFORMATION, wanted.Get());
}

// Kept as they are but for those that say how a file is stored, which cannot simply be set.
bool TakeFileAttributes(HANDLE file, DWORD wanted)
{
    constexpr DWORD Settable = FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED |
                               FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_SYSTEM;
    constexpr DWORD Stored = FILE_ATTRIBUTE_COMPRESSED | FILE_ATTRIBUTE_ENCRYPTED | FILE_ATTRIBUTE_REPARSE_POINT |
                             FILE_ATTRIBUTE_SPARSE_FILE;
    if ((FactsOf(file).dwFileAttributes & Stored) != (wanted & Stored))
        return false;
    FILE_BASIC_INFO facts{};
    facts.FileAttributes = (wanted & Settable) != 0 ? wanted & Settable : FILE_ATTRIBUTE_NORMAL;
    return SetFileInformationByHandle(file, FileBasicInfo, &facts, sizeof facts);
}

bool HasFurtherStreams(const std::string& path)
{
    WIN32_FIND_STREAM_DATA stream{};
    const HANDLE found = FindFirstStreamW(Wide(path).c_str(), FindStreamInfoStandard, &stream, 0);
    if (found == INVALID_HANDLE_VALUE)
        return false;
    const std::unique_ptr<void, decltype(&FindClose)> streams(found, &FindClose);
    return FindNextStreamW(streams.get(), &stream);
}

// None: somebody holds it.
Handle TakeMutex(const Identity& identity)
{
    const std::wstring name =
        L"Global\\qovxml-configure-" + std::to_wstring(identity.volume) + L"-" + std::to_wstring(identity.file);
    SetLastError(ERROR_SUCCESS);
    Handle mutex(CreateMutexW(nullptr, FALSE, name.c_str()));
    const DWORD error = GetLastError();
    if (mutex && error != ERROR_ALREADY_EXISTS)
        return mutex;
    // Another user's mutex may not be opened.
    if (error != ERROR_ALREADY_EXISTS && error != ERROR_ACCESS_DENIED)
        ThrowError(error);
    return Handle(nullptr);
}

}  // namespace

std::optional<FileLock> FileLock::Take(const std::string& path)
{
    for (;;) {
        const Identity identity = Look(path).identity;
        Handle mutex = TakeMutex(identity);
        if (!mutex)
            return std::nullopt;
        // Who held it may have put another file in its place.
        if (Look(path).identity == identity)
            return FileLock(AsNumber(mutex.Release()));
    }
}

FileLock::FileLock(FileLock&& other) noexcept : handle_(std::exchange(other.handle_, AsNumber(INVALID_HANDLE_VALUE))) {}

FileLock& FileLock::operator=(FileLock&& other) noexcept
{
    std::swap(handle_, other.handle_);
    return *this;
}

FileLock::~FileLock() { const Handle closed(AsHandle(handle_)); }

NewFile::NewFile(std::string path, const std::string& original)
    : path_(std::move(path)), original_(original), handle_(AsNumber(INVALID_HANDLE_VALUE))
{
    Security security = SecurityOf(original_);
    // Its owner is whoever makes it, at first.
    SECURITY_DESCRIPTOR access{};
    BOOL present = FALSE;
    BOOL defaulted = FALSE;
    PACL entries = nullptr;
    Check(InitializeSecurityDescriptor(&access, SECURITY_DESCRIPTOR_REVISION) &&
          GetSecurityDescriptorDacl(security.Get(), &present, &entries, &defaulted) &&
          SetSecurityDescriptorDacl(&access, present, entries, FALSE));
    SECURITY_ATTRIBUTES attributes{sizeof attributes, &access, FALSE};
    // WRITE_OWNER may be refused to whoever may write everything else.
    for (const DWORD further : {DWORD{WRITE_DAC | WRITE_OWNER}, DWORD{WRITE_DAC}, DWORD{0}}) {
        handle_ = AsNumber(CreateFileW(Wide(path_).c_str(), GENERIC_READ | GENERIC_WRITE | further,
                                       FILE_SHARE_READ | FILE_SHARE_DELETE, &attributes, CREATE_NEW,
                                       FILE_ATTRIBUTE_NORMAL, nullptr));
        if (AsHandle(handle_) != INVALID_HANDLE_VALUE || GetLastError() != ERROR_ACCESS_DENIED)
            break;
    }
    Check(AsHandle(handle_) != INVALID_HANDLE_VALUE);
}

NewFile::~NewFile()
{
    Close();
    if (!renamed_)
        DeleteFileW(Wide(path_).c_str());
}

void NewFile::Close() { const Handle closed(AsHandle(std::exchange(handle_, AsNumber(INVALID_HANDLE_VALUE)))); }

void NewFile::Write(const std::string& bytes) const { WriteAll(AsHandle(handle_), bytes); }

bool NewFile::TakeAttributes()
{
    Security security = SecurityOf(original_);
    const DWORD attributes = FactsOf(Open(original_, FILE_READ_ATTRIBUTES).Get()).dwFileAttributes;
    return !HasFurtherStreams(original_) && TakeSecurity(AsHandle(handle_), security) &&
           TakeFileAttributes(AsHandle(handle_), attributes);
}

void NewFile::Flush() const { Check(FlushFileBuffers(AsHandle(handle_))); }

FileLock NewFile::RenameOver(const std::string& target)
{
    Handle mutex = TakeMutex(IdentityOf(FactsOf(AsHandle(handle_))));
    if (!mutex)
        throw SystemFailure(path_ + " is held by another program");
    FileLock lock(AsNumber(mutex.Release()));
    Close();
    Check(MoveFileExW(Wide(path_).c_str(), Wide(target).c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH));
    renamed_ = true;
    return lock;
}

bool NewFile::RenameToFree(const std::string& target)
{
    Close();
    renamed_ = MoveFileExW(Wide(path_).c_str(), Wide(target).c_str(), MOVEFILE_WRITE_THROUGH);
    Check(renamed_ || GetLastError() == ERROR_ALREADY_EXISTS || GetLastError() == ERROR_FILE_EXISTS);
    return renamed_;
}

}  // namespace host::platform
