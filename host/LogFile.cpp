#include "host/LogFile.h"

#include "host/Console.h"
#include "host/Now.h"
#include "host/ThisMachine.h"
#include "host/review/ShownText.h"

namespace host {

LogFile::LogFile(const std::string& path, const std::string& machineName) : wanted_(!path.empty())
{
    if (!wanted_)
        return;
    file_.open(path, std::ios::binary);
    Write("qovxml-configure " QOVXML_VERSION);
    Write("System:  " + SystemName());
    Write("Machine: " + Harmless(machineName));
    Write("Time:    " + Now());
    Write("");
}

void LogFile::Write(const std::vector<rehearsal::LogMessage>& log)
{
    for (const rehearsal::LogMessage& message : log)
        Write(LogLine(message));
}

void LogFile::Write(const std::string& line)
{
    if (wanted_)
        file_ << line << '\n';
}

bool LogFile::Written() { return !wanted_ || static_cast<bool>(file_.flush()); }

}  // namespace host
