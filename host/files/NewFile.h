// New files and the locks of those whose place they take. What the system refuses is thrown as SystemFailure.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace host::platform {

// The one right of all processes to work at a file; it ends with its owner or the process.
class FileLock {
public:
    // None: somebody holds it.
    [[nodiscard]] static std::optional<FileLock> Take(const std::string& path);

    FileLock(FileLock&& other) noexcept;
    FileLock& operator=(FileLock&& other) noexcept;
    ~FileLock();

private:
    friend class NewFile;
    explicit FileLock(std::intptr_t handle) : handle_(handle) {}

    std::intptr_t handle_;
};

// A file that nobody can read who cannot read the original, made under a name that was free; removed again unless it
// gets another name.
class NewFile {
public:
    NewFile(std::string path, const std::string& original);
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile();

    void Write(const std::string& bytes) const;
    // Owner, mode, ACL and what else the system keeps beside the bytes; false: some of it cannot be had.
    [[nodiscard]] bool TakeAttributes();
    void Flush() const;
    [[nodiscard]] const std::string& Path() const { return path_; }

    // Each is the last that is asked of it. The first takes the place of the target, its lock being held from before;
    // the second gives false where the name is taken.
    [[nodiscard]] FileLock RenameOver(const std::string& target);
    [[nodiscard]] bool RenameToFree(const std::string& target);

private:
    void Close();

    std::string path_;
    std::string original_;
    std::intptr_t handle_;
    bool renamed_ = false;
};

}  // namespace host::platform
