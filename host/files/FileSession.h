// The one operation that writes a user's files: preflight, locks, backups, putting in place, restoring.
#pragma once

#include "QovXml.h"

#include <array>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace host {

// One line for each problem: the file's path, what is wrong, what to do.
struct FileProblem : std::runtime_error {
    using runtime_error::runtime_error;
};

struct FileChange {
    std::string path;  // as given
    std::string before;
    std::string after;
};

struct Restored {
    std::vector<FileChange> files;        // those that had a backup: what they held, and what they hold now
    std::vector<std::string> notRemoved;  // a line for each backup that is still there
};

// To look reads only; to change locks the files and heals what a killed run left.
enum class Purpose { Look, Change };

// The three files of one command. All paths are as given and narrow (on Windows in the active code page).
//
// While a session to change lives, no other one can be had on any of its files, by whatever path. What it works with
// lies beside the files under names that end in .qovxml-new, .qovxml-old and .qovxml-backup, and is gone afterwards
// on every way out but a kill: then each file is wholly old or wholly new (or, where it must be rewritten in place,
// has a whole copy beside it), and the next session to change heals that.
class FileSession {
public:
    // Throws FileProblem when another session holds one of the files.
    FileSession(const QovXml::Config& files, Purpose purpose);
    FileSession(const FileSession&) = delete;
    FileSession& operator=(const FileSession&) = delete;
    ~FileSession();

    // What no run can use and, to change, what can be neither written nor healed. That there is no pipelines
    // definition file is none.
    [[nodiscard]] std::vector<std::string> Problems() const;
    // What would hinder changing these files.
    [[nodiscard]] std::vector<std::string> Hindrances(const std::optional<std::string>& backupSuffix,
                                                      const std::vector<std::string>& changed) const;
    // What was healed or, to look, found of a killed run.
    [[nodiscard]] std::vector<std::string> Notices() const;

    // All or nothing: the backups, if there is a suffix, then each file whose bytes differ. Gives the paths of the
    // backups. Throws FileProblem or Interrupted with everything put back and no backup left.
    std::vector<std::string> PutInPlace(const std::vector<FileChange>& changes,
                                        const std::optional<std::string>& backupSuffix);
    // Puts back every file that has a backup, all or none, then removes the backups. Throws as PutInPlace does, and
    // FileProblem when there is no backup or an original is missing (a pipelines definition file with neither may be).
    Restored Restore(const std::string& backupSuffix);

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace host
