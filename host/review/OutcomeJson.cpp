#include "host/review/Report.h"
#include "host/review/ShownText.h"

#include <nlohmann/json.hpp>

namespace host {

namespace {

using Json = nlohmann::ordered_json;

Json TextOrNull(const std::optional<std::string>& text) { return text ? Json(Utf8(*text)) : Json(nullptr); }

Json LinesJson(const std::vector<LineChange>& changes)
{
    Json lines = Json::array();
    for (const LineChange& change : changes)
        lines.push_back({{"line", change.line}, {"before", Utf8(change.before)}, {"after", Utf8(change.after)}});
    return lines;
}

Json FilesJson(const std::vector<FileReport>& reports)
{
    Json files = Json::array();
    for (const FileReport& file : reports)
        files.push_back({{"path", Utf8(file.path)},
                         {"changed", file.changed},
                         {"backup", TextOrNull(file.backup)},
                         {"lines", LinesJson(file.lines)}});
    return files;
}

Json LogJson(const std::vector<rehearsal::LogMessage>& messages)
{
    Json log = Json::array();
    for (const rehearsal::LogMessage& message : messages)
        log.push_back(
            {{"level", message.level == LogLevel::Warning ? "warning" : "info"}, {"text", LogText(message.text)}});
    return log;
}

}  // namespace

nlohmann::ordered_json OutcomeJson(const Report& report)
{
    Json warnings = Json::array();
    for (const std::string& warning : report.warnings)
        warnings.push_back(Utf8(warning));
    Json object = {{"outcome", report.outcome},
                   {"message", TextOrNull(report.message)},
                   {"warnings", std::move(warnings)},
                   {"files", FilesJson(report.files)},
                   {"log", LogJson(report.log)}};
    if (report.diff)
        object["diff"] = Utf8(*report.diff);
    if (!report.atFault.empty())
        object["atFault"] = report.atFault;
    return object;
}

}  // namespace host
