// Names that people gave their endpoints are nowhere in a redacted snapshot, and nothing else is another than it was.
#include "machine/MachineJson.h"
#include "snapshot/Snapshot.h"

#include <gtest/gtest.h>

namespace {

using machine::MachineDescription;

TEST(RedactTest, EndpointsHaveNumbersForNames)
{
    MachineDescription machine = machine::ReadMachine(QOVXML_EXAMPLES "/machines/laptop-spatialf.json");
    machine.endpoints[1].friendlyName = L"Anna's phones";
    machine.endpoints[0].properties->push_back(
        {L"{A45C254E-df1c-4efd-8020-67d146a850e0},14", REG_SZ, {'A', 0, 'n', 0}});
    machine.endpoints[0].properties->push_back({L"short", REG_EXPAND_SZ, machine::TextData(L"the HEADPHONES, 2")});
    machine.endpoints[0].properties->push_back(
        {L"bytes of Anna's phones", REG_BINARY, machine::TextData(L"(speakers)")});
    machine.endpoints[0].properties->push_back({L"text", REG_MULTI_SZ, machine::TextData(L"of Anna's phones, and", 2)});
    machine.endpoints[2].friendlyName = L"1";  // stands in a value that a run reads, and in words
    machine.notes = {L"\"Anna's phones\" gave different answers"};
    MachineDescription redacted = machine;
    snapshot::Redact(redacted);
    EXPECT_EQ(redacted.endpoints[0].friendlyName, L"Endpoint 1");
    EXPECT_EQ(redacted.endpoints[0].properties->back().data, machine::TextData(L"of Endpoint 2, and", 2));
    const std::vector<std::wstring> notes{L"\"Endpoint 2\" gave different answers",
                                          L"The value bytes of Endpoint 2 of Endpoint 1 held a name and was emptied"};
    EXPECT_EQ(redacted.notes, notes);
    const std::string text = machine::WriteMachine(redacted);
    for (const char* const name :
         {"An", "High Definition Audio Device", "Microphone Array", "HEADPHONES", "\"Headphones\""})
        EXPECT_EQ(text.find(name), std::string::npos) << name;
    // Nothing else is another than it was.
    for (std::size_t index = 0; index < machine.endpoints.size(); ++index) {
        redacted.endpoints[index].friendlyName = machine.endpoints[index].friendlyName;
        redacted.endpoints[index].properties = machine.endpoints[index].properties;
    }
    redacted.notes = machine.notes;
    EXPECT_EQ(redacted, machine);
}

}  // namespace
