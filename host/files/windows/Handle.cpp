#include "host/files/windows/Handle.h"

#include <array>
#include <string_view>

namespace host::platform {

namespace {

DWORD Part(std::size_t size)
{
    constexpr std::size_t Most = 1u << 20;
    return static_cast<DWORD>(size < Most ? size : Most);
}

}  // namespace

void ThrowError(DWORD error)
{
    std::array<char, 512> text{};
    const DWORD size = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0,
                                      text.data(), static_cast<DWORD>(text.size()), nullptr);
    std::string message(text.data(), size);
    while (!message.empty() && std::string_view("\r\n. ").find(message.back()) != std::string_view::npos)
        message.pop_back();
    throw SystemFailure(message.empty() ? "error " + std::to_string(error) : message);
}

std::wstring Wide(const std::string& text)
{
    if (text.empty())
        return {};
    const int length = static_cast<int>(text.size());
    const int size = MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, text.data(), length, nullptr, 0);
    Check(size > 0);
    std::wstring wide(static_cast<std::size_t>(size), L'\0');
    Check(MultiByteToWideChar(CP_ACP, 0, text.data(), length, wide.data(), size) == size);
    return wide;
}

std::string Narrow(const std::wstring& text)
{
    if (text.empty())
        return {};
    const int length = static_cast<int>(text.size());
    const int size = WideCharToMultiByte(CP_ACP, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    Check(size > 0);
    std::string narrow(static_cast<std::size_t>(size), '\0');
    Check(WideCharToMultiByte(CP_ACP, 0, text.data(), length, narrow.data(), size, nullptr, nullptr) == size);
    if (Wide(narrow) != text)
        ThrowError(ERROR_NO_UNICODE_TRANSLATION);
    return narrow;
}

Handle OpenWide(const std::wstring& path, DWORD access, DWORD flags)
{
    return Handle(CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                              OPEN_EXISTING, flags, nullptr));
}

Handle Open(const std::string& path, DWORD access, DWORD flags)
{
    Handle file = OpenWide(Wide(path), access, flags);
    Check(bool(file));
    return file;
}

void WriteAll(HANDLE file, const std::string& bytes)
{
    Check(SetFilePointerEx(file, {}, nullptr, FILE_BEGIN));
    for (std::size_t written = 0; written < bytes.size();) {
        DWORD count = 0;
        Check(WriteFile(file, bytes.data() + written, Part(bytes.size() - written), &count, nullptr));
        written += count;
    }
}

BY_HANDLE_FILE_INFORMATION FactsOf(HANDLE file)
{
    BY_HANDLE_FILE_INFORMATION facts{};
    Check(GetFileInformationByHandle(file, &facts));
    return facts;
}

Identity IdentityOf(const BY_HANDLE_FILE_INFORMATION& facts)
{
    return {facts.dwVolumeSerialNumber, std::uint64_t{facts.nFileIndexHigh} << 32 | facts.nFileIndexLow};
}

}  // namespace host::platform
