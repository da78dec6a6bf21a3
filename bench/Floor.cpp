// What every program that rewrites files line by line must do: reads each file whole, and writes it back with one
// write for each line. Nothing is edited.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <memory>

namespace {

// False: the system refuses something.
bool Rewrite(const char* path)
{
    const int source = ::open(path, O_RDONLY | O_CLOEXEC);
    struct stat facts {};
    if (source < 0 || ::fstat(source, &facts) != 0)
        return false;
    const auto size = static_cast<std::size_t>(facts.st_size);
    const auto bytes = std::make_unique_for_overwrite<char[]>(size);
    std::size_t got = 0;
    for (ssize_t count = 0; (count = ::read(source, bytes.get() + got, size - got)) > 0;)
        got += static_cast<std::size_t>(count);
    ::close(source);

    const int target = ::open(path, O_WRONLY | O_TRUNC | O_CLOEXEC);
    bool written = target >= 0 && got == size;
    const char* const end = bytes.get() + size;
    for (const char* line = bytes.get(); written && line < end;) {
        const void* const found = std::memchr(line, '\n', static_cast<std::size_t>(end - line));
        const char* const next = found != nullptr ? static_cast<const char*>(found) + 1 : end;
        written = ::write(target, line, static_cast<std::size_t>(next - line)) == next - line;
        line = next;
    }
    ::close(target);
    return written;
}

}  // namespace

int main(int argc, char** argv)
{
    for (int index = 1; index < argc; ++index)
        if (!Rewrite(argv[index]))
            return 1;
    return 0;
}
