#include "host/files/Placement.h"

#include "host/files/Contents.h"
#include "host/files/Leftovers.h"
#include "host/files/Messages.h"

#include <utility>

namespace host {

namespace {

using messages::Line;
using messages::Telling;
using platform::NewFile;

// A whole file with the attributes of the original, yet to be flushed; none: it would lack some.
std::unique_ptr<NewFile> MakeAlike(const std::string& path, const std::string& bytes, const std::string& original)
{
    auto file = std::make_unique<NewFile>(path, original);
    file->Write(bytes);
    if (!file->TakeAttributes())
        return nullptr;
    return file;
}

}  // namespace

void Placement::CheckUnchanged() const
{
    Telling(file_.path, messages::NotPlaced, [&] {
        if (platform::Look(file_.real).identity != file_.facts.identity || !Holds(file_.real, change_.before))
            throw FileProblem(Line(file_.path, messages::Changed));
    });
}

void Placement::CheckHolds(const std::string& bytes) const
{
    if (!Holds(file_.real, bytes))
        throw FileProblem(Line(file_.path, messages::NotAsWritten));
}

void Placement::WriteBackup()
{
    Telling(file_.path, messages::BackupFailed, [&] {
        unfinishedBackup_ = MakeAlike(UnfinishedBackupName(file_.path), change_.before, file_.real);
        if (!unfinishedBackup_)
            throw FileProblem(Line(file_.path, messages::BackupNotAlike));
    });
}

void Placement::FinishBackup(const std::string& suffix)
{
    const std::string backup = file_.path + suffix;
    Telling(file_.path, messages::BackupFailed, [&] {
        const auto unfinished = std::move(unfinishedBackup_);
        unfinished->Flush();
        if (!Holds(unfinished->Path(), change_.before))
            throw FileProblem(Line(unfinished->Path(), messages::NotAsWritten));
        if (!unfinished->RenameToFree(backup))
            throw FileProblem(Line(backup, messages::BackupExists));
        backup_ = backup;
    });
}

void Placement::FlushBackup() const
{
    Telling(file_.path, messages::BackupFailed, [&] { platform::FlushFolder(backup_.value()); });
}

void Placement::Prepare()
{
    Telling(file_.path, messages::NotPlaced, [&] {
        if (file_.facts.names == 1)
            replacement_ = MakeAlike(NewName(file_.real), change_.after, file_.real);
        if (!replacement_)
            MakeCopy();
    });
}

void Placement::MakeCopy()
{
    const std::string path = OldName(file_.real);
    NewFile copy(NewName(file_.real), file_.real);
    copy.Write(change_.before);
    // What cannot be had leaves it readable to its maker alone.
    (void)copy.TakeAttributes();
    copy.Flush();
    if (!Holds(copy.Path(), change_.before))
        throw FileProblem(Line(copy.Path(), messages::NotAsWritten));
    if (!copy.RenameToFree(path))
        throw FileProblem(Line(path, messages::NotHealed));
    copied_ = true;
    platform::FlushFolder(path);
}

void Placement::Flush() const
{
    if (replacement_)
        Telling(file_.path, messages::NotPlaced, [&] { replacement_->Flush(); });
}

void Placement::Commit(std::vector<platform::FileLock>& locks)
{
    CheckUnchanged();
    Telling(file_.path, messages::NotPlaced, [&] {
        if (replacement_) {
            locks.push_back(replacement_->RenameOver(file_.real));
            started_ = true;
        } else {
            started_ = true;
            platform::Rewrite(file_.real, change_.after);
        }
    });
}

void Placement::CheckCommitted() const
{
    Telling(file_.path, messages::NotPlaced, [&] {
        if (replacement_)
            platform::FlushFolder(file_.real);
        CheckHolds(change_.after);
    });
}

void Placement::Finish()
{
    if (!copied_)
        return;
    Telling(file_.path, messages::NotPlaced, [&] {
        platform::Remove(OldName(file_.real));
        copied_ = false;
        platform::FlushFolder(file_.real);
    });
}

std::vector<std::string> Placement::Undo(std::vector<platform::FileLock>& locks)
{
    std::vector<std::string> lines;
    unfinishedBackup_.reset();
    try {
        Telling(file_.path, messages::NotPutBack, [&] { PutBack(locks); });
    } catch (const FileProblem& problem) {
        lines.emplace_back(problem.what());
        if (backup_)
            lines.push_back(Line(*backup_, messages::BackupKept));
        return lines;
    }
    if (!backup_)
        return lines;
    try {
        platform::Remove(*backup_);
        platform::FlushFolder(*backup_);
    } catch (const platform::SystemFailure& failure) {
        lines.push_back(Line(*backup_, messages::BackupNotRemoved, failure.what()));
    }
    return lines;
}

void Placement::PutBack(std::vector<platform::FileLock>& locks)
{
    const bool replaced = replacement_ != nullptr;
    replacement_.reset();
    if (started_) {
        const auto old = replaced ? MakeAlike(NewName(file_.real), change_.before, file_.real) : nullptr;
        if (old) {
            old->Flush();
            locks.push_back(old->RenameOver(file_.real));
        } else {
            platform::Rewrite(file_.real, change_.before);
        }
        platform::FlushFolder(file_.real);
        CheckHolds(change_.before);
    }
    if (copied_) {
        platform::Remove(OldName(file_.real));
        platform::FlushFolder(file_.real);
    }
}

}  // namespace host
