// Runs a fuzz target on files, and on all files of folders, where there is no libFuzzer: its seeds are tests
// everywhere.
#include "fuzz/Fuzz.h"
#include "support/Scratch.h"

#include <filesystem>
#include <iostream>

namespace fs = std::filesystem;

namespace {

void Replay(const fs::path& path)
{
    if (fs::is_directory(path)) {
        for (const fs::directory_entry& entry : fs::directory_iterator(path))
            Replay(entry.path());
        return;
    }
    std::cout << path.string() << std::endl;
    const std::string bytes = ReadBytes(path);
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

}  // namespace

int main(int argc, char** argv)
{
    for (int index = 1; index < argc; ++index)
        Replay(argv[index]);
    return argc > 1 ? 0 : 2;
}
