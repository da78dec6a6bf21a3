// What the program tells: account, warnings and errors on standard error, results on standard output. Texts are UTF-8.
#pragma once

#include "rehearsal/Rehearsal.h"

#include <string>
#include <string_view>
#include <vector>

namespace host {

struct CommonOptions;

class Console {
public:
    explicit Console(const CommonOptions& options);

    // One step of the account; left out with --quiet, and with --verbose too, where the log tells more.
    void Step(const std::string& text) const;
    // What is no step of the account: left out with --quiet alone.
    void Notice(const std::string& text) const;
    // What is left of account and summary with --quiet.
    void Outcome(std::string_view text) const;
    // The library's own log, with --verbose.
    void WholeLog(const std::vector<rehearsal::LogMessage>& log) const;
    void Warning(const std::string& text) const;
    // Each line of the text is one.
    void Error(const std::string& text) const;

    // Results. Left out of standard output with --json, where the object says it all.
    void Summary(const std::string& text) const;
    void Diff(const std::string& text) const;
    // One line of a result; one that stands out is coloured.
    void Line(const std::string& text, bool standsOut) const;
    void Json(const std::string& text) const;

    // False when standard output did not take all that was written to it.
    [[nodiscard]] bool OutputWritten() const;

private:
    bool quiet_;
    bool verbose_;
    bool json_;
    bool coloursOnError_;
    bool coloursOnOutput_;
};

// A message as the log tells it: "[info] " or "[warning] " and the text.
std::string LogLine(const rehearsal::LogMessage& message);

}  // namespace host
