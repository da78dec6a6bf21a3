#include "support/Scratch.h"

namespace fs = std::filesystem;

UnwritableFile::UnwritableFile(const fs::path& path) : path_(path)
{
    fs::permissions(path_, fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                    fs::perm_options::remove);
}

UnwritableFile::~UnwritableFile() { fs::permissions(path_, fs::perms::owner_write, fs::perm_options::add); }
