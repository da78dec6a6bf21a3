#include "support/Scratch.h"

#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

ScratchFolder::ScratchFolder()
{
    std::random_device random;
    folder_ = fs::temp_directory_path() / ("qovxml-test-" + std::to_string(random()) + "-" + std::to_string(random()));
    fs::create_directory(folder_);
}

ScratchFolder::~ScratchFolder()
{
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
}

std::string ReadBytes(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error("cannot read " + path.string());
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

void WriteBytes(const fs::path& path, const std::string& bytes) { std::ofstream(path, std::ios::binary) << bytes; }
