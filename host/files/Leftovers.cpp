#include "host/files/Leftovers.h"

#include "host/files/Contents.h"
#include "host/files/Messages.h"
#include "host/files/Platform.h"

#include <string_view>

namespace host {

namespace {

using messages::Line;

constexpr std::string_view New = ".qovxml-new";
constexpr std::string_view Old = ".qovxml-old";
constexpr std::string_view Backup = ".qovxml-backup";

bool Exists(const std::string& path) { return platform::KindOfName(path) != platform::Kind::Missing; }

void RemoveIfThere(const std::string& path, std::vector<std::string>& notices)
{
    if (!Exists(path))
        return;
    platform::Remove(path);
    notices.push_back(Line(path, messages::Removed));
}

void PutBackIfThere(const std::string& real, std::vector<std::string>& notices)
{
    const std::string old = OldName(real);
    if (!Exists(old))
        return;
    if (!platform::Trusted(old, real))
        throw FileProblem(Line(old, messages::Untrusted));
    const std::string bytes = Read(old);
    if (!Holds(real, bytes))
        platform::Rewrite(real, bytes);
    if (!Holds(real, bytes))
        throw FileProblem(Line(real, messages::NotAsWritten));
    platform::Remove(old);
    platform::FlushFolder(real);
    notices.push_back(Line(real, messages::PutBack));
}

}  // namespace

std::string NewName(const std::string& real) { return real + std::string(New); }
std::string OldName(const std::string& real) { return real + std::string(Old); }
std::string UnfinishedBackupName(const std::string& given) { return given + std::string(Backup); }

bool IsReservedName(const std::string& path)
{
    return path.ends_with(New) || path.ends_with(Old) || path.ends_with(Backup);
}

std::vector<std::string> NamedLeftovers(const std::string& given, const std::string& real)
{
    std::vector<std::string> notices;
    if (Exists(OldName(real)))
        notices.push_back(Line(OldName(real), messages::WillBePutBack));
    for (const std::string& path : {NewName(real), UnfinishedBackupName(given)})
        if (Exists(path))
            notices.push_back(Line(path, messages::WillBeRemoved));
    return notices;
}

std::vector<std::string> Heal(const std::string& given, const std::string& real)
{
    std::vector<std::string> notices;
    messages::Telling(OldName(real), messages::NotHealed, [&] { PutBackIfThere(real, notices); });
    for (const std::string& path : {NewName(real), UnfinishedBackupName(given)})
        messages::Telling(path, messages::NotHealed, [&] { RemoveIfThere(path, notices); });
    return notices;
}

}  // namespace host
