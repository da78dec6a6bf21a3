// An open file in the folder that nobody else can open; Windows removes it when its process ends.
#include "rehearsal/FolderClaim.h"

#include <windows.h>

namespace rehearsal {

std::optional<FolderClaim> FolderClaim::Take(const std::filesystem::path& folder)
{
    const HANDLE file = CreateFileW((folder / "claim").c_str(), GENERIC_WRITE | DELETE, FILE_SHARE_DELETE, nullptr,
                                    OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return std::nullopt;
    return FolderClaim(reinterpret_cast<std::intptr_t>(file));
}

FolderClaim::~FolderClaim()
{
    if (handle_ != None)
        CloseHandle(reinterpret_cast<HANDLE>(handle_));
}

}  // namespace rehearsal
