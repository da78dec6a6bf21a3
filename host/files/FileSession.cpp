#include "host/files/FileSession.h"

#include "host/files/Contents.h"
#include "host/files/Interrupt.h"
#include "host/files/Leftovers.h"
#include "host/files/Messages.h"
#include "host/files/NewFile.h"
#include "host/files/Placement.h"
#include "host/files/Platform.h"
#include "host/files/Preflight.h"

#include <algorithm>
#include <iterator>

namespace host {

using messages::Line;
using messages::ThrowIfAny;

struct FileSession::Parts {
    Purpose purpose;
    GivenFiles files;                       // configuration, settings, pipelines definition
    std::vector<platform::FileLock> locks;  // of every file that was ever in one of the places
    std::vector<std::string> notices;
    std::vector<std::string> notHealed;

    void LockAll();
    void HealAll();
    [[nodiscard]] const GivenFile& Find(const std::string& path) const;
    void PlaceAll(std::vector<Placement>& placements, const std::optional<std::string>& backupSuffix);
    void Place(std::vector<Placement>& placements, const std::optional<std::string>& backupSuffix);
    [[nodiscard]] std::vector<GivenFile> WithBackups(const std::string& backupSuffix) const;
};

void FileSession::Parts::LockAll()
{
    std::vector<std::string> inUse;
    std::vector<platform::Identity> locked;
    for (GivenFile& file : files) {
        if (!file.IsUsable() || std::find(locked.begin(), locked.end(), file.facts.identity) != locked.end())
            continue;
        try {
            if (auto lock = platform::FileLock::Take(file.real)) {
                locks.push_back(std::move(*lock));
                // Whoever held it may have put another file in its place.
                file = Examine(file.path);
                locked.push_back(file.facts.identity);
            } else {
                inUse.push_back(Line(file.path, messages::InUse));
            }
        } catch (const platform::SystemFailure& failure) {
            file.problem = Line(file.path, messages::Unreadable, failure.what());
        }
    }
    ThrowIfAny(inUse);
}

void FileSession::Parts::HealAll()
{
    for (const GivenFile& file : files) {
        if (!file.IsUsable())
            continue;
        try {
            const auto made =
                purpose == Purpose::Change ? Heal(file.path, file.real) : NamedLeftovers(file.path, file.real);
            std::copy(made.begin(), made.end(), std::back_inserter(notices));
        } catch (const FileProblem& problem) {
            notHealed.emplace_back(problem.what());
        }
    }
}

const GivenFile& FileSession::Parts::Find(const std::string& path) const
{
    const auto found =
        std::find_if(files.begin(), files.end(), [&](const GivenFile& file) { return file.path == path; });
    if (found == files.end())
        throw std::logic_error(path + " is none of the files of this session");
    return *found;
}

FileSession::FileSession(const QovXml::Config& files, Purpose purpose)
    : parts_(std::make_unique<Parts>(Parts{
          purpose,
          {Examine(files.ConfigurationFile), Examine(files.SettingsFile), Examine(files.ApoPipelinesDefinitionFile)},
          {},
          {},
          {}}))
{
    if (purpose == Purpose::Change)
        parts_->LockAll();
    parts_->HealAll();
}

FileSession::~FileSession() = default;

std::vector<std::string> FileSession::Problems() const
{
    std::vector<std::string> problems = parts_->notHealed;
    for (const GivenFile& file : parts_->files) {
        if (&file != &parts_->files.back())
            AddMissing(file, problems);
        if (file.problem)
            problems.push_back(*file.problem);
        if (file.facts.kind != platform::Kind::Regular)
            continue;
        if (file.IsUsable())
            AddUnusableContent(file, problems);
        if (parts_->purpose == Purpose::Change)
            AddUnwritable(file, problems);
    }
    AddGivenTwice(parts_->files, problems);
    return problems;
}

std::vector<std::string> FileSession::Hindrances(const std::optional<std::string>& backupSuffix,
                                                 const std::vector<std::string>& changed) const
{
    std::vector<std::string> hindrances;
    for (const GivenFile& file : parts_->files) {
        if (!file.IsUsable())
            continue;
        AddUnwritable(file, hindrances);
        if (std::find(changed.begin(), changed.end(), file.path) != changed.end())
            AddUnwritableBeside(file, backupSuffix, hindrances);
    }
    return hindrances;
}

std::vector<std::string> FileSession::Notices() const { return parts_->notices; }

void FileSession::Parts::Place(std::vector<Placement>& placements, const std::optional<std::string>& backupSuffix)
{
    const auto each = [&placements](const auto& step) {
        for (Placement& placement : placements) {
            ThrowIfInterrupted();
            step(placement);
        }
    };
    each([](const Placement& placement) { placement.CheckUnchanged(); });
    if (backupSuffix) {
        each([](Placement& placement) { placement.WriteBackup(); });
        each([&](Placement& placement) { placement.FinishBackup(*backupSuffix); });
        each([](const Placement& placement) { placement.FlushBackup(); });
    }
    each([](Placement& placement) { placement.Prepare(); });
    each([](const Placement& placement) { placement.Flush(); });
    each([this](Placement& placement) { placement.Commit(locks); });
    // All files are in place: an interruption undoes nothing from here on.
    for (const Placement& placement : placements)
        placement.CheckCommitted();
    for (Placement& placement : placements)
        placement.Finish();
}

void FileSession::Parts::PlaceAll(std::vector<Placement>& placements, const std::optional<std::string>& backupSuffix)
{
    const auto undo = [&](std::vector<std::string> lines) {
        // What is prepared gives its room back before anything is written again.
        std::for_each(placements.rbegin(), placements.rend(), [&](Placement& placement) {
            const auto left = placement.Undo(locks);
            lines.insert(lines.end(), left.begin(), left.end());
        });
        return messages::Joined(lines);
    };
    try {
        Place(placements, backupSuffix);
    } catch (const FileProblem& problem) {
        throw FileProblem(undo({problem.what()}));
    } catch (const Interrupted& interruption) {
        throw Interrupted{interruption.signal, undo({})};
    } catch (...) {
        undo({});
        throw;
    }
}

std::vector<std::string> FileSession::PutInPlace(const std::vector<FileChange>& changes,
                                                 const std::optional<std::string>& backupSuffix)
{
    std::vector<std::string> problems = parts_->notHealed;
    std::vector<Placement> placements;
    for (const FileChange& change : changes) {
        if (change.before == change.after)
            continue;
        const GivenFile& file = parts_->Find(change.path);
        if (!file.IsUsable())
            problems.push_back(file.problem.value_or(Line(file.path, messages::Missing)));
        else
            AddUnwritableBeside(file, backupSuffix, problems);
        placements.emplace_back(change, file);
    }
    ThrowIfAny(problems);
    parts_->PlaceAll(placements, backupSuffix);

    std::vector<std::string> backups;
    for (const Placement& placement : placements)
        if (placement.Backup())
            backups.push_back(*placement.Backup());
    return backups;
}

// Throws FileProblem unless each of them can be put back.
std::vector<GivenFile> FileSession::Parts::WithBackups(const std::string& backupSuffix) const
{
    std::vector<std::string> problems = notHealed;
    std::vector<std::string> none;
    std::vector<GivenFile> found;
    for (const GivenFile& file : files) {
        const std::string backup = file.path + backupSuffix;
        const platform::Kind kind =
            messages::Telling(backup, messages::NotFound, [&] { return platform::KindOfName(backup); });
        if (kind == platform::Kind::Missing) {
            none.push_back(Line(file.path, messages::NoBackup, backup));
            if (&file != &files.back())
                AddMissing(file, problems);
            continue;
        }
        if (kind != platform::Kind::Regular)
            problems.push_back(Line(backup, messages::BackupNotRegular));
        else if (std::any_of(files.begin(), files.end(), [&](const GivenFile& other) {
                     return other.IsUsable() && other.facts.identity == platform::Look(backup).identity;
                 }))
            problems.push_back(Line(backup, messages::BackupGiven));
        if (!file.IsThere())
            problems.push_back(Line(backup, messages::Orphan));
        else if (file.problem)
            problems.push_back(*file.problem);
        else
            AddUnwritable(file, problems);
        found.push_back(file);
    }
    AddGivenTwice(files, problems);
    if (found.empty())
        problems.insert(problems.end(), none.begin(), none.end());
    ThrowIfAny(problems);
    return found;
}

Restored FileSession::Restore(const std::string& backupSuffix)
{
    Restored restored;
    for (const GivenFile& file : parts_->WithBackups(backupSuffix)) {
        const auto read = [](const std::string& path) {
            return messages::Telling(path, messages::Unreadable, [&] { return Read(path); });
        };
        restored.files.push_back({file.path, read(file.path), read(file.path + backupSuffix)});
    }
    PutInPlace(restored.files, std::nullopt);

    for (const FileChange& file : restored.files) {
        const std::string backup = file.path + backupSuffix;
        try {
            platform::Remove(backup);
            platform::FlushFolder(backup);
        } catch (const platform::SystemFailure& failure) {
            restored.notRemoved.push_back(Line(backup, messages::BackupNotRemoved, failure.what()));
        }
    }
    return restored;
}

}  // namespace host
