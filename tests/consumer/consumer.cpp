#include <QovXml.h>

#include <exception>
#include <iostream>

class ConsoleLogger final : public ILogger {
    void Log(LogLevel level, const std::wstring& message) override
    {
        std::wclog << (level == LogLevel::Warning ? L"warning: " : L"") << message << std::endl;
    }
};

int main(int, char** argv)
{
    ConsoleLogger logger;
    try {
        QovXml::ConfigureQovXmls({argv[1], argv[2], argv[3]}, logger);
    } catch (const std::exception& failure) {
        std::wclog << L"The QOV files could not be configured: " << failure.what() << std::endl;
        return 1;
    }
    return 0;
}
