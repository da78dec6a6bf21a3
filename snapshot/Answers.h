// Questions to the objects of a machine: each is put twice, and every failure becomes a fault of the description.
#pragma once

#include "common/Owners.h"
#include "machine/MachineDescription.h"

#include <functional>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <vector>

namespace snapshot {

struct Question {
    std::string call;  // one of machine::PlatformCalls()
    std::wstring object{};
    std::string arguments{};
    LONG expected = 0;  // the failure that the described machine gives by itself
};

// What the first of two calls gave, whatever the second gave.
template <class Value>
struct Answer {
    LONG result = 0;
    Value value{};
    bool stable = true;
};

class Answers {
public:
    // `call` takes the place for what it gives, and gives the result. Objects that it gives are not compared.
    template <class Value, class Call>
    static Answer<Value> Twice(Call call)
    {
        Answer<Value> first, again;
        first.result = call(first.value);
        again.result = call(again.value);
        first.stable = first.result == again.result;
        if constexpr (requires { first.value == again.value; })
            first.stable = first.stable && first.value == again.value;
        return first;
    }

    // Keeps how an answer failed, and that it is not always the same. Whether it succeeded.
    template <class Value>
    bool Keep(const Question& question, const Answer<Value>& answer)
    {
        return Keep(question, answer.result, answer.stable);
    }
    bool Keep(const Question& question, LONG result, bool stable = true);

    // Both at once; `value` is left alone by a failure.
    template <class Value, class Call>
    bool Put(const Question& question, Value& value, Call call)
    {
        Answer<Value> answer = Twice<Value>(call);
        const bool succeeded = Keep(question, answer);
        if (succeeded)
            value = std::move(answer.value);
        return succeeded;
    }

    // A text that the description can hold: unpaired surrogates, and NUL units, become U+FFFD.
    std::wstring Clean(const std::wstring& text);

    void Note(const std::wstring& remark);

    // In a fixed order, those of objects that the machine has; the notes behind.
    void MoveInto(machine::MachineDescription& machine);

private:
    using QuestionKey = std::tuple<std::string, std::string, std::string>;  // object, call and arguments

    std::map<QuestionKey, LONG> results_;
    std::set<QuestionKey> faults_;
    std::vector<std::wstring> notes_;
    std::set<std::wstring> noted_;
};

// A text that a COM call gives as task memory.
template <class Call>
auto TextOf(Call call)
{
    return [call](std::wstring& text) -> LONG {
        qov::TaskText given;
        const HRESULT result = call(given.Put());
        text = given.Text();
        return result;
    };
}

}  // namespace snapshot
