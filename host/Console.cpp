#include "host/Console.h"

#include "host/CommandLine.h"
#include "host/Terminal.h"
#include "host/review/ShownText.h"

#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string_view>

namespace host {

namespace {

constexpr char Red[] = "\x1b[31m", Green[] = "\x1b[32m", Yellow[] = "\x1b[33m", Plain[] = "\x1b[0m";

bool WantsColours(const CommonOptions& options, Stream stream)
{
    const char* const refused = std::getenv("NO_COLOR");
    return !options.noColor && (refused == nullptr || *refused == '\0') && ShowsColours(stream);
}

void Tell(const char* label, const char* colour, bool coloured, const std::string& text)
{
    std::cerr << (coloured ? colour : "") << label << (coloured ? Plain : "") << text << '\n';
}

}  // namespace

Console::Console(const CommonOptions& options)
    : quiet_(options.quiet),
      verbose_(options.verbose),
      json_(options.json),
      coloursOnError_(WantsColours(options, Stream::Error)),
      coloursOnOutput_(WantsColours(options, Stream::Output))
{
}

void Console::Step(const std::string& text) const
{
    if (!quiet_ && !verbose_)
        std::cerr << text << '\n';
}

void Console::Notice(const std::string& text) const
{
    if (!quiet_)
        std::cerr << text << '\n';
}

void Console::Outcome(std::string_view text) const
{
    if (quiet_)
        std::cerr << text << '\n';
}

void Console::WholeLog(const std::vector<rehearsal::LogMessage>& log) const
{
    if (verbose_)
        for (const rehearsal::LogMessage& message : log)
            std::cerr << HarmlessLines(LogLine(message)) << '\n';
}

void Console::Warning(const std::string& text) const { Tell("warning: ", Yellow, coloursOnError_, text); }

void Console::Error(const std::string& text) const
{
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        Tell("error: ", Red, coloursOnError_, line);
}

void Console::Summary(const std::string& text) const
{
    if (!quiet_ && !json_)
        std::cout << text;
}

void Console::Diff(const std::string& text) const
{
    if (json_)
        return;
    if (!coloursOnOutput_) {
        std::cout << text;
        return;
    }
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const char* const colour = line.starts_with('-') ? Red : line.starts_with('+') ? Green : Plain;
        std::cout << colour << line << Plain << '\n';
    }
}

void Console::Line(const std::string& text, bool standsOut) const
{
    const bool coloured = standsOut && coloursOnOutput_;
    std::cout << (coloured ? Red : "") << text << (coloured ? Plain : "") << '\n';
}

void Console::Json(const std::string& text) const
{
    if (json_)
        std::cout << text << '\n';
}

bool Console::OutputWritten() const { return static_cast<bool>(std::cout.flush()); }

std::string LogLine(const rehearsal::LogMessage& message)
{
    return (message.level == LogLevel::Warning ? "[warning] " : "[info] ") + LogText(message.text);
}

}  // namespace host
