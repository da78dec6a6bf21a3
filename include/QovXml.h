#pragma once

#include "ILogger.h"

#include <string>

#if defined(QOVXML_STATIC)  // set by the build for programs that link the library's objects directly
#define QOVXML_API
#elif defined(_WIN32) && defined(QOVXML_BUILD)
#define QOVXML_API __declspec(dllexport)
#elif defined(_WIN32)
#define QOVXML_API __declspec(dllimport)
#else
#define QOVXML_API __attribute__((visibility("default")))
#endif

class QOVXML_API QovXml {
public:
    // The three files to edit; each is read, edited and written back to the same path. Paths go unchanged to the C
    // runtime (on Windows they are read in the active code page).
    struct Config {
        std::string ConfigurationFile;
        std::string SettingsFile;
        std::string ApoPipelinesDefinitionFile;  // touched only when an APO of the maker is present
    };

    // Fits the three files to the audio processing modules that are present on this machine.
    //
    // Runs whole on the calling thread, which is a member of the multithreaded COM apartment meanwhile; a thread that
    // is in a single-threaded apartment is refused. Two calls on the same files must not run at the same time.
    //
    // Throws std::exception (by value of a derived type) whose what() says what was wrong. Files that were written
    // before the failure stay written: first the configuration file, then the settings file, then the pipelines
    // definition file, each only after all its edits have succeeded. A file that cannot be written is not reported.
    static void ConfigureQovXmls(const Config& config, ILogger& logger);

    // Changes nothing.
    QovXml& operator=(const QovXml&);
};
