// The parts of a run, each over growing sizes: the last figures of each say how its time grows.
#include "discovery/ModuleDiscovery.h"
#include "host/review/PlainXml.h"
#include "machine/MachineJson.h"
#include "simulation/SimulatedMachine.h"
#include "xmledit/Blocks.h"
#include "xmledit/LineFile.h"
#include "xmledit/QuotedValues.h"

#include <benchmark/benchmark.h>

#include <objbase.h>
#include <cstdio>
#include <string>

namespace {

constexpr char Keyword[] = "OrvexZan_Sfx_Apo";
const std::string Filler = "    <Entry Name=\"filler\" Value=\"7\" Unit=\"dB\" Enabled=\"yes\" />\r\n";
const std::string Block = "<ParameterBlock Name=\"OrvexZan_Sfx_Apo\">\r\n</ParameterBlock>\r\n";

std::string Repeated(const std::string& text, std::int64_t times)
{
    std::string repeated;
    repeated.reserve(text.size() * static_cast<std::size_t>(times));
    for (std::int64_t done = 0; done < times; ++done)
        repeated += text;
    return repeated;
}

void MillionLines(benchmark::internal::Benchmark* benchmark)
{
    for (const int lines : {125'000, 250'000, 500'000, 1'000'000})
        benchmark->Arg(lines);
    benchmark->Unit(benchmark::kMillisecond)->Complexity(benchmark::oN);
}

// Edits a file of this text as often as the benchmark wants, whatever comes of it.
template <class Edit>
void EditText(benchmark::State& state, const std::string& text, Edit edit)
{
    for (auto _ : state) {
        state.PauseTiming();
        qov::LineFile lines(text);
        state.ResumeTiming();
        try {
            edit(lines);
        } catch (const std::exception& refusal) {
            state.SetLabel(refusal.what());
        }
    }
    state.SetComplexityN(state.range(0));
}

void ReadAndWrite(benchmark::State& state)
{
    const std::string path = "bench_parts.tmp";
    qov::WriteLineFile(qov::LineFile(Repeated(Filler, state.range(0))), path);
    for (auto _ : state)
        qov::WriteLineFile(qov::ReadLineFile(path), path);
    std::remove(path.c_str());
    state.SetComplexityN(state.range(0));
}
BENCHMARK(ReadAndWrite)->Apply(MillionLines);

void BlocksOfPlainFile(benchmark::State& state)
{
    EditText(state, Block + Repeated(Filler, state.range(0)), [](qov::LineFile& lines) {
        qov::DisableParameterBlock(lines, Keyword);
        qov::EnableParameterBlock(lines, Keyword);
    });
}
BENCHMARK(BlocksOfPlainFile)->Apply(MillionLines);

void KeywordOnEveryLine(benchmark::State& state)
{
    EditText(state, Repeated("OrvexZan_Sfx_Apo\r\n", state.range(0)),
             [](qov::LineFile& lines) { qov::DisableParameterBlock(lines, Keyword); });
}
BENCHMARK(KeywordOnEveryLine)->Apply(MillionLines);

void StartTagAboveKeywordOnEveryLine(benchmark::State& state)
{
    EditText(state, "<ParameterBlock>\r\n" + Repeated("OrvexZan_Sfx_Apo\r\n", state.range(0)) + "</ParameterBlock>\r\n",
             [](qov::LineFile& lines) { qov::DisableParameterBlock(lines, Keyword); });
}
BENCHMARK(StartTagAboveKeywordOnEveryLine)->Apply(MillionLines);

void ShortBlocks(benchmark::State& state)
{
    EditText(state, Repeated(Block, state.range(0)),
             [](qov::LineFile& lines) { qov::DisableParameterBlock(lines, Keyword); });
}
BENCHMARK(ShortBlocks)->Apply(MillionLines);

void ValueBehindKeywordOnEveryLine(benchmark::State& state)
{
    EditText(state, Repeated("Subeffects_DefaultMode\r\n", state.range(0)),
             [](qov::LineFile& lines) { qov::SetModeParamIds(lines, "1", "2"); });
}
BENCHMARK(ValueBehindKeywordOnEveryLine)->Apply(MillionLines);

// Bytes of one line, which is a block.
void OneLine(benchmark::State& state)
{
    const std::string text = "<ParameterBlock Name=\"OrvexZan_Sfx_Apo\">" +
                             std::string(static_cast<std::size_t>(state.range(0)), 'x') + "</ParameterBlock>";
    EditText(state, text, [](qov::LineFile& lines) { qov::DisableParameterBlock(lines, Keyword); });
}
BENCHMARK(OneLine)
    ->Arg(25'000'000)
    ->Arg(50'000'000)
    ->Arg(100'000'000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);

void PlainXml(benchmark::State& state)
{
    const std::string text = "<r>\r\n" + Repeated(Filler, state.range(0)) + "</r>\r\n";
    for (auto _ : state)
        benchmark::DoNotOptimize(host::IsPlainXml(text));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
    state.SetComplexityN(state.range(0));
}
BENCHMARK(PlainXml)->Apply(MillionLines);

class QuietLogger final : public ILogger {
    void Log(LogLevel, const std::wstring&) override {}
};

// The endpoints of the example laptop, over and over under other ids.
machine::MachineDescription LaptopWith(std::size_t endpoints, std::size_t faults)
{
    machine::MachineDescription machine = machine::ReadMachine(QOVXML_LAPTOP);
    const std::vector<machine::Endpoint> originals = machine.endpoints;
    for (std::size_t index = originals.size(); index < endpoints; ++index) {
        machine::Endpoint endpoint = originals[index % originals.size()];
        endpoint.guid.Data1 += static_cast<std::uint32_t>(index);
        endpoint.guidPropertyText = machine::UpperGuidText(endpoint.guid);
        endpoint.deviceId += std::to_wstring(index);
        machine.endpoints.push_back(endpoint);
    }
    machine.endpoints.resize(endpoints);
    for (std::size_t index = 0; index < faults; ++index)
        machine.faults.push_back({"IMMDevice::GetId", static_cast<unsigned>(1'000'000 + index), E_FAIL});
    return machine;
}

void Discover(benchmark::State& state, std::size_t faultsForEach)
{
    const auto endpoints = static_cast<std::size_t>(state.range(0));
    const machine::MachineDescription description = LaptopWith(endpoints, faultsForEach * endpoints);
    (void)CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    QuietLogger logger;
    std::size_t calls = 0;
    for (auto _ : state) {
        state.PauseTiming();
        {
            const simulation::SimulatedMachine machine(description);
            state.ResumeTiming();
            (void)qov::AudioModulesUtils::DiscoverAudioModules(logger);
            state.PauseTiming();
            calls = machine.Calls().size();
        }
        state.ResumeTiming();
    }
    CoUninitialize();
    state.counters["calls"] = static_cast<double>(calls);
    state.SetComplexityN(state.range(0));
}
void DiscoverEndpoints(benchmark::State& state) { Discover(state, 0); }
void DiscoverEndpointsAmongFaults(benchmark::State& state) { Discover(state, 16); }
BENCHMARK(DiscoverEndpoints)
    ->RangeMultiplier(2)
    ->Range(1, 256)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);
BENCHMARK(DiscoverEndpointsAmongFaults)
    ->RangeMultiplier(2)
    ->Range(1, 256)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);

}  // namespace

BENCHMARK_MAIN();
