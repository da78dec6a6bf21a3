// Prints what one exception that crossed the library leaves behind in the host's C++ runtime.
#include <QovXml.h>

#include <exception>
#include <iostream>

class SilentLogger final : public ILogger {
    void Log(LogLevel, const std::wstring&) override {}
};

int main()
{
    SilentLogger logger;
    try {
        QovXml::ConfigureQovXmls({"no such file", "no such file", "no such file"}, logger);
    } catch (const std::exception&) {
        std::cout << "uncaught exceptions: " << std::uncaught_exceptions() << std::endl;
        return 0;
    }
    return 1;
}
