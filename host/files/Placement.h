// One file on its way from its old bytes to its new ones, and back if the others do not follow.
#pragma once

#include "host/files/FileSession.h"
#include "host/files/NewFile.h"
#include "host/files/Preflight.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace host {

// The steps are asked for in this order, each of all files before the next; they throw FileProblem, after which Undo is
// asked for. What is written is on its way to the disk while the next file is; only then is it waited for.
//
// The new bytes go to a file of their own that takes the place of the old one. Where that would lose something (another
// name, an owner that cannot be given, part of an ACL) the file is rewritten, with a whole copy beside it meanwhile.
class Placement {
public:
    // Both must outlive it.
    Placement(const FileChange& change, const GivenFile& file) : change_(change), file_(file) {}

    void CheckUnchanged() const;
    void WriteBackup();
    void FinishBackup(const std::string& suffix);
    void FlushBackup() const;
    void Prepare();
    void Flush() const;
    // A file that takes the place of another is locked from before; the lock is added.
    void Commit(std::vector<platform::FileLock>& locks);
    void CheckCommitted() const;
    // Removes what was needed to go back.
    void Finish();
    // Gives a line for everything that could not be undone.
    std::vector<std::string> Undo(std::vector<platform::FileLock>& locks);

    [[nodiscard]] const std::optional<std::string>& Backup() const { return backup_; }

private:
    void MakeCopy();
    void PutBack(std::vector<platform::FileLock>& locks);
    void CheckHolds(const std::string& bytes) const;

    const FileChange& change_;
    const GivenFile& file_;
    std::optional<std::string> backup_;
    std::unique_ptr<platform::NewFile> unfinishedBackup_;
    std::unique_ptr<platform::NewFile> replacement_;
    bool copied_ = false;   // the whole copy is beside the file
    bool started_ = false;  // the file may no longer hold its old bytes
};

}  // namespace host
