// Every message about a file: "<path>: <what> (<reason of the system>); <what to do>", one line and harmless to show.
#pragma once

#include "host/files/FileSession.h"
#include "host/files/Platform.h"
#include "host/review/ShownText.h"

#include <string>
#include <vector>

namespace host::messages {

struct Message {
    const char* what;
    const char* advice;
};

inline std::string Line(const std::string& path, const Message& message, const std::string& detail = {})
{
    return Harmless(path + ": " + message.what + (detail.empty() ? "" : " (" + detail + ")") + "; " + message.advice);
}

inline std::string Joined(const std::vector<std::string>& lines)
{
    std::string text;
    for (const std::string& line : lines)
        text += (text.empty() ? "" : "\n") + line;
    return text;
}

inline void ThrowIfAny(const std::vector<std::string>& problems)
{
    if (!problems.empty())
        throw FileProblem(Joined(problems));
}

// What the system refuses becomes a problem of this file.
template <class Operation>
auto Telling(const std::string& path, const Message& message, Operation operation)
{
    try {
        return operation();
    } catch (const platform::SystemFailure& failure) {
        throw FileProblem(Line(path, message, failure.what()));
    }
}

// Preflight
inline constexpr Message Missing{"does not exist", "give the path of a file that does"};
inline constexpr Message NotFound{"cannot be found", "check the path and the rights on its folders"};
inline constexpr Message NotRegular{"is no regular file", "give the path of a file, or of a link to one"};
inline constexpr Message Unreadable{"cannot be read", "make it readable, or run as somebody who may read it"};
inline constexpr Message Unwritable{"cannot be written", "make it writable, or run as somebody who may write it"};
inline constexpr Message SameFile{"is a file that was given twice", "give three different files"};
inline constexpr Message Utf16{"is UTF-16 text", "save it in an encoding that holds ASCII, such as UTF-8"};
inline constexpr Message NulByte{"holds a NUL byte, so it is no such text",
                                 "save it in an encoding that holds ASCII, such as UTF-8, or take a sound copy"};
inline constexpr Message ReservedName{"has a name that is kept for temporary files", "give it another name"};
inline constexpr Message InUse{"is being changed by another apply or restore",
                               "run the command again when that has ended"};
inline constexpr Message FolderUnwritable{"no file can be made beside it",
                                          "make its folder writable, or run as somebody who may write it"};

// What a killed run left
inline constexpr Message PutBack{"was put back as it had been", "a killed run had left it half written"};
inline constexpr Message Removed{"was removed", "a killed run had left this temporary file"};
inline constexpr Message WillBePutBack{"is the whole copy of a file that a killed run may have left half written",
                                       "the next apply or restore puts it back"};
inline constexpr Message WillBeRemoved{"is a temporary file of a run that was killed or is at work",
                                       "the next apply or restore removes it"};
inline constexpr Message NotHealed{"is what a killed run left, and cannot be put back or removed",
                                   "run as somebody who may write it and its folder"};
inline constexpr Message Untrusted{"is not from a run of yours or of the file's owner", "look at it, then remove it"};

// Backups
inline constexpr Message BackupExists{"exists already",
                                      "move that backup away, or name another suffix with --backup=SUFFIX"};
inline constexpr Message BackupFailed{"cannot be backed up", "see to it, or run without --backup"};
inline constexpr Message BackupNotAlike{"cannot be backed up with its owner, mode and ACL",
                                        "run as its owner or an administrator, or without --backup"};
inline constexpr Message BackupNotRemoved{"is a backup that cannot be removed", "remove it by hand"};
inline constexpr Message BackupKept{"is a backup that stays, since its file could not be put back",
                                    "copy it over the file"};
inline constexpr Message NoBackup{"has no backup", "name the suffix that apply was given with --backup=SUFFIX"};
inline constexpr Message Orphan{"is the backup of a file that does not exist", "copy it to where the file belongs"};
inline constexpr Message BackupNotRegular{"is no regular file, so it is no backup",
                                          "look at it, or name another suffix"};
inline constexpr Message BackupGiven{"is the backup of one of the files and another one of them",
                                     "give three different files, or name another suffix"};

// Putting in place
inline constexpr Message Changed{"has changed since it was read", "run the command again"};
inline constexpr Message NotPlaced{"cannot be changed", "see to it and run the command again"};
inline constexpr Message NotAsWritten{"does not hold what was written to it", "check the disk"};
inline constexpr Message NotPutBack{"could not be put back", "check it, and run the command again"};

}  // namespace host::messages
