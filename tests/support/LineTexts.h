// Line files as texts whose lines end with "|".
#pragma once

#include "xmledit/LineFile.h"

#include <algorithm>
#include <string>

inline qov::LineFile LinesOf(std::string text)
{
    std::replace(text.begin(), text.end(), '|', '\n');
    return qov::LineFile(std::move(text));
}

inline std::string TextOf(const qov::LineFile& lines)
{
    std::string text;
    for (std::size_t line = 0; line < lines.End(); line = lines.Next(line))
        text.append(lines[line]) += '|';
    return text;
}
