// The edits of one run, in their order: the configuration file, the settings file and, when an APO is present, the APO
// pipelines definition file. Each is read, edited and written before the next is read.
#pragma once

#include "ILogger.h"
#include "QovXml.h"
#include "run/ModuleValidation.h"

namespace qov {

// Throws what ReadLineFile, SetQuotedValue, CommentOutBlocks and UncommentBlocks throw; the file under edit is then not
// written. Each step is logged before it is done, so the last line names the step that failed.
void EditConfiguration(const QovXml::Config& config, const ValidatedModules& modules, ILogger& logger);

}  // namespace qov
