#include "host/files/Preflight.h"

#include "host/files/Leftovers.h"
#include "host/files/Messages.h"

#include <string_view>

namespace host {

namespace {

using messages::Line;
using messages::Message;

// Adds the line if the system refuses the operation.
template <class Operation>
bool AddIfRefused(const std::string& path, const Message& message, std::vector<std::string>& problems,
                  Operation operation)
{
    try {
        operation();
        return false;
    } catch (const platform::SystemFailure& failure) {
        problems.push_back(Line(path, message, failure.what()));
        return true;
    }
}

void AddBackupInTheWay(const GivenFile& file, const std::string& backupSuffix, std::vector<std::string>& problems)
{
    const std::string backup = file.path + backupSuffix;
    AddIfRefused(backup, messages::NotFound, problems, [&] {
        if (IsReservedName(backup))
            problems.push_back(Line(backup, messages::ReservedName));
        else if (platform::KindOfName(backup) != platform::Kind::Missing)
            problems.push_back(Line(backup, messages::BackupExists));
    });
}

bool IsUtf16Mark(std::string_view bytes) { return bytes == "\xFF\xFE" || bytes == "\xFE\xFF"; }

}  // namespace

GivenFile Examine(const std::string& path)
{
    GivenFile file{path, {}, {}, {}};
    try {
        file.facts = platform::Look(path);
        if (!file.IsThere())
            return file;
        if (file.facts.kind != platform::Kind::Regular)
            file.problem = Line(path, messages::NotRegular);
        else if (file.real = platform::RealPath(path); IsReservedName(file.real) || IsReservedName(path))
            file.problem = Line(path, messages::ReservedName);
    } catch (const platform::SystemFailure& failure) {
        file.facts.kind = platform::Kind::Other;
        file.problem = Line(path, messages::NotFound, failure.what());
    }
    return file;
}

void AddMissing(const GivenFile& file, std::vector<std::string>& problems)
{
    if (!file.IsThere())
        problems.push_back(Line(file.path, messages::Missing));
}

void AddGivenTwice(const GivenFiles& files, std::vector<std::string>& problems)
{
    for (std::size_t index = 0; index < files.size(); ++index)
        for (std::size_t earlier = 0; earlier < index; ++earlier)
            if (files[index].IsUsable() && files[earlier].IsUsable() &&
                files[index].facts.identity == files[earlier].facts.identity) {
                problems.push_back(Line(files[index].path, messages::SameFile, "also as " + files[earlier].path));
                break;
            }
}

void AddUnusableContent(const GivenFile& file, std::vector<std::string>& problems)
{
    std::string start;
    bool holdsNul = false;
    const bool refused = AddIfRefused(file.path, messages::Unreadable, problems, [&] {
        platform::ReadParts(file.real, [&](std::string_view part) {
            start += part.substr(0, 2 - start.size());
            holdsNul = holdsNul || part.find('\0') != std::string_view::npos;
            return true;
        });
    });
    if (refused)
        return;
    if (IsUtf16Mark(start))
        problems.push_back(Line(file.path, messages::Utf16));
    else if (holdsNul)
        problems.push_back(Line(file.path, messages::NulByte));
}

void AddUnwritable(const GivenFile& file, std::vector<std::string>& problems)
{
    AddIfRefused(file.path, messages::Unwritable, problems, [&] { platform::CheckWritable(file.real); });
}

void AddUnwritableBeside(const GivenFile& file, const std::optional<std::string>& backupSuffix,
                         std::vector<std::string>& problems)
{
    const bool refused = AddIfRefused(file.path, messages::FolderUnwritable, problems,
                                      [&] { platform::CheckFolderWritable(file.real); });
    if (!backupSuffix)
        return;
    if (!refused)
        AddIfRefused(file.path, messages::FolderUnwritable, problems,
                     [&] { platform::CheckFolderWritable(file.path); });
    AddBackupInTheWay(file, *backupSuffix, problems);
}

}  // namespace host
