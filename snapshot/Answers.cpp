#include "snapshot/Answers.h"

#include "machine/FaultJson.h"
#include "machine/PlatformCalls.h"
#include "machine/Utf16.h"

#include <algorithm>

namespace snapshot {

bool Answers::Keep(const Question& question, LONG result, bool stable)
{
    const QuestionKey key{machine::Utf16ToUtf8(question.object), question.call, question.arguments};
    const auto [first, isNew] = results_.try_emplace(key, result);
    if (!stable || first->second != result)
        Note(machine::Utf8ToUtf16(question.call + " of \"" + std::get<0>(key) + "\" (" + question.arguments +
                                  ") gave different answers: the first is kept"));
    const bool failed = machine::FindPlatformCall(question.call)->IsFailure(result);
    if (isNew && failed && result != question.expected)
        faults_.insert(key);
    return !failed;
}

std::wstring Answers::Clean(const std::wstring& text)
{
    std::wstring clean = machine::Utf8ToUtf16(machine::Utf16ToUtf8(text));
    std::replace(clean.begin(), clean.end(), L'\0', L'\xFFFD');
    if (clean != text)
        Note(L"A text is no UTF-16, and is kept as \"" + clean + L"\"");
    return clean;
}

void Answers::Note(const std::wstring& remark)
{
    if (noted_.insert(remark).second)
        notes_.push_back(remark);
}

void Answers::MoveInto(machine::MachineDescription& machine)
{
    for (const QuestionKey& question : faults_) {
        const auto& [object, call, arguments] = question;
        const LONG result = results_.at(question);
        const machine::Fault fault{call, {}, result, object, arguments};
        if (object.empty() || machine::NamesObjectOf(fault, machine))
            machine.faults.push_back(fault);
        else
            Note(machine::Utf8ToUtf16(call + " of \"" + object + "\" (" + arguments + ") gave " +
                                      std::to_string(result) + ": the description has no such object"));
    }
    machine.notes = std::move(notes_);
}

}  // namespace snapshot
