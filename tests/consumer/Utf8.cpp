// The conversion of README's program, on texts that the machine at hand does not log.
#define main ReadmeMain
#include "main.cpp"
#undef main

int main()
{
    const std::string converted = Utf8(L"A\x00E9\x20AC\xFFFF\xD83D\xDE00 \xDE00\xD83D \xD83D");
    const std::string expected =
        "A\xC3\xA9\xE2\x82\xAC\xEF\xBF\xBF\xF0\x9F\x98\x80 \xEF\xBF\xBD\xEF\xBF\xBD \xEF\xBF\xBD";
    std::clog << converted << std::endl;
    return converted == expected ? 0 : 1;
}
