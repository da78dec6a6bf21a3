#include "support/TemporaryRoot.h"

#include <cstdlib>

TemporaryRoot::TemporaryRoot(const std::filesystem::path& folder)
{
    if (const char* const before = std::getenv("TMPDIR"))
        before_ = before;
    setenv("TMPDIR", folder.c_str(), 1);
}

TemporaryRoot::~TemporaryRoot()
{
    if (before_)
        setenv("TMPDIR", before_->c_str(), 1);
    else
        unsetenv("TMPDIR");
}
