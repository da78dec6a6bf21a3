// Named XML elements switched off by turning them into a comment, and on again.
//
// A block is the lines from a start line (one that holds the start tag) to an end line (one that holds the end tag). It
// is disabled when its start line holds "<!--". Disabling writes "<!--" before the first byte of the start line and
// "-->" behind the last byte of the end line; enabling takes exactly these away.
#pragma once

#include "xmledit/LineFile.h"

#include <string>

namespace qov {

// Toggles every block that holds the keyword, in file order, until one is met that is in the wanted state already. The
// block of a keyword runs from the nearest start tag at or above it to the nearest end tag at or below it; the tags are
// plain substrings. A keyword that occurs nowhere is no failure.
//
// Throws `Section start tag "<start tag>"not found` and `Parameter block end for keyword "<end tag>"not found`. A block
// whose text would not survive the edit is refused with `Cannot disable block "<keyword>": line <number> ...` (or
// `enable`; lines count from 1): its lines take in the start or the end of another block, its element is self-closing,
// a block to disable holds comment markers, or a block to enable lacks them where disabling puts them or has others on
// these lines. The block at which a failure occurs is not changed; those toggled before it stay toggled.
void CommentOutBlocks(LineFile& lines, const std::string& keyword, const std::string& startTag,
                      const std::string& endTag);
void UncommentBlocks(LineFile& lines, const std::string& keyword, const std::string& startTag,
                     const std::string& endTag);

// The sections of the configuration file.
void DisableParameterBlock(LineFile& lines, const std::string& name);
void EnableParameterBlock(LineFile& lines, const std::string& name);

// The domains of the settings file.
void DisableConfigurableDomain(LineFile& lines, const std::string& name);
void EnableConfigurableDomain(LineFile& lines, const std::string& name);

}  // namespace qov
