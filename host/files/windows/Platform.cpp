#include "host/files/Platform.h"

#include "host/files/windows/Handle.h"

#include <vector>

namespace host::platform {

namespace {

bool IsMissing(DWORD error) { return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND; }

std::wstring FolderOf(const std::wstring& path)
{
    const std::size_t end = path.find_last_of(L"\\/:");
    return end == std::wstring::npos ? L"." : path.substr(0, end + 1);
}

}  // namespace

Facts Look(const std::string& path)
{
    const Handle file = OpenWide(Wide(path), FILE_READ_ATTRIBUTES, FILE_FLAG_BACKUP_SEMANTICS);
    if (!file) {
        Check(IsMissing(GetLastError()));
        return {};
    }
    if (GetFileType(file.Get()) != FILE_TYPE_DISK)
        return {Kind::Other, {}, 0};
    const BY_HANDLE_FILE_INFORMATION facts = FactsOf(file.Get());
    const bool folder = (facts.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    return {folder ? Kind::Other : Kind::Regular, IdentityOf(facts), facts.nNumberOfLinks};
}

Kind KindOfName(const std::string& path)
{
    const Handle file =
        OpenWide(Wide(path), FILE_READ_ATTRIBUTES, FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT);
    if (!file) {
        Check(IsMissing(GetLastError()));
        return Kind::Missing;
    }
    FILE_ATTRIBUTE_TAG_INFO facts{};
    Check(GetFileInformationByHandleEx(file.Get(), FileAttributeTagInfo, &facts, sizeof facts));
    if ((facts.FileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 && IsReparseTagNameSurrogate(facts.ReparseTag))
        return Kind::Link;
    return (facts.FileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? Kind::Other : Kind::Regular;
}

std::string RealPath(const std::string& path)
{
    // Any other path serves as it is, and may be beyond the active code page where it leads.
    if (KindOfName(path) != Kind::Link)
        return path;
    const Handle file = Open(path, FILE_READ_ATTRIBUTES, FILE_FLAG_BACKUP_SEMANTICS);
    std::wstring real(GetFinalPathNameByHandleW(file.Get(), nullptr, 0, FILE_NAME_NORMALIZED), L'\0');
    const DWORD size =
        GetFinalPathNameByHandleW(file.Get(), real.data(), static_cast<DWORD>(real.size()), FILE_NAME_NORMALIZED);
    Check(size > 0 && size < real.size());
    real.resize(size);
    return Narrow(real);
}

void ReadParts(const std::string& path, const std::function<bool(std::string_view part)>& take)
{
    const Handle file = Open(path, GENERIC_READ);
    std::vector<char> part(std::size_t{1} << 18);
    for (;;) {
        DWORD count = 0;
        Check(ReadFile(file.Get(), part.data(), static_cast<DWORD>(part.size()), &count, nullptr));
        if (count == 0 || !take({part.data(), count}))
            return;
    }
}

void CheckWritable(const std::string& path) { (void)Open(path, GENERIC_WRITE); }

void CheckFolderWritable(const std::string& path)
{
    const Handle folder = OpenWide(FolderOf(Wide(path)), FILE_ADD_FILE, FILE_FLAG_BACKUP_SEMANTICS);
    Check(bool(folder));
}

// Who may make files in a folder is for the folder's ACL to say.
bool Trusted(const std::string& path, const std::string&) { return KindOfName(path) == Kind::Regular; }

void Rewrite(const std::string& path, const std::string& bytes)
{
    const Handle file = Open(path, GENERIC_WRITE);
    WriteAll(file.Get(), bytes);
    Check(SetEndOfFile(file.Get()));
    Check(FlushFileBuffers(file.Get()));
}

void Remove(const std::string& path) { Check(DeleteFileW(Wide(path).c_str()) || IsMissing(GetLastError())); }

// Names are written through where they are made.
void FlushFolder(const std::string&) {}

}  // namespace host::platform
