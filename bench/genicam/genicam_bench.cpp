// Load time of real camera files and the cost of the common feature accesses.
#include <benchmark/benchmark.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "ry/genicam/NodeMapRef.h"
#include "ry/genicam/ZeroPort.h"

namespace {

using namespace RyGenApi;

std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

const std::string& LargestFile() {
    static const std::string text =
        ReadFile(std::string(RY_GENICAM_CORPUS_DIR) + "/Basler-acA640-300gm.xml");
    return text;
}

void BM_LoadLargestFile(benchmark::State& state) {
    const std::string& text = LargestFile();
    if (text.empty()) {
        state.SkipWithError("corpus file not found");
        return;
    }
    for (auto _ : state) {
        CNodeMapRef map;
        map._LoadXMLFromString(text);
        benchmark::DoNotOptimize(map._GetNode("Width"));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                            static_cast<int64_t>(text.size()));
}
BENCHMARK(BM_LoadLargestFile)->Unit(benchmark::kMillisecond);

void BM_LoadWholeCorpus(benchmark::State& state) {
    std::vector<std::string> texts;
    size_t bytes = 0;
    for (const auto& entry : std::filesystem::directory_iterator(RY_GENICAM_CORPUS_DIR)) {
        if (entry.path().extension() == ".xml") {
            texts.push_back(ReadFile(entry.path().string()));
            bytes += texts.back().size();
        }
    }
    for (auto _ : state) {
        for (const std::string& text : texts) {
            CNodeMapRef map;
            map._LoadXMLFromString(text);
            benchmark::DoNotOptimize(map._GetNodeMap());
        }
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(bytes));
}
BENCHMARK(BM_LoadWholeCorpus)->Unit(benchmark::kMillisecond);

// A small map shaped like the common camera pattern: a feature over a converter chain and
// a register, with an access-mode lock and a formula computing a derived value.
const char* const kFeatureMap = R"(<RegisterDescription>
  <Integer Name="Width"><pIsLocked>Locked</pIsLocked><pValue>WidthReg</pValue>
    <Min>16</Min><pMax>WidthMax</pMax><Inc>4</Inc></Integer>
  <Integer Name="Locked"><Value>0</Value></Integer>
  <Integer Name="WidthMax"><Value>4096</Value></Integer>
  <IntReg Name="WidthReg"><Address>0x10000</Address><Length>4</Length><AccessMode>RW</AccessMode>
    <pPort>Device</pPort><Endianess>BigEndian</Endianess></IntReg>
  <IntReg Name="Status"><Address>0x10004</Address><Length>4</Length><AccessMode>RO</AccessMode>
    <pPort>Device</pPort><Cachable>NoCache</Cachable></IntReg>
  <IntReg Name="Height"><Address>0x10008</Address><Length>4</Length><AccessMode>RW</AccessMode>
    <pPort>Device</pPort></IntReg>
  <IntSwissKnife Name="PayloadSize"><pVariable Name="W">Width</pVariable><pVariable Name="H">Height</pVariable>
    <Formula>(W * H * 12 + 7) / 8 + ((W &gt; 2048) ? 64 : 0)</Formula></IntSwissKnife>
  <SwissKnife Name="FrameRate"><pVariable Name="P">Height</pVariable>
    <Formula>(P &lt;&gt; 0) ? (1e6 / P) : 0</Formula></SwissKnife>
  <Port Name="Device"/>
</RegisterDescription>)";

struct FeatureMap {
    FeatureMap() {
        map._LoadXMLFromString(kFeatureMap);
        map._Connect(&port);
    }
    ZeroPort port;
    CNodeMapRef map;
};

void BM_CachedIntegerRead(benchmark::State& state) {
    FeatureMap f;
    auto* width = dynamic_cast<IInteger*>(f.map._GetNode("Width"));
    width->GetValue();
    for (auto _ : state) {
        benchmark::DoNotOptimize(width->GetValue());
    }
}
BENCHMARK(BM_CachedIntegerRead);

void BM_UncachedReadThroughPort(benchmark::State& state) {
    FeatureMap f;
    auto* status = dynamic_cast<IInteger*>(f.map._GetNode("Status"));
    for (auto _ : state) {
        benchmark::DoNotOptimize(status->GetValue());
    }
}
BENCHMARK(BM_UncachedReadThroughPort);

void BM_IntSwissKnifeEvaluation(benchmark::State& state) {
    FeatureMap f;
    auto* payload = dynamic_cast<IInteger*>(f.map._GetNode("PayloadSize"));
    payload->GetValue();
    for (auto _ : state) {
        benchmark::DoNotOptimize(payload->GetValue());
    }
}
BENCHMARK(BM_IntSwissKnifeEvaluation);

void BM_SwissKnifeEvaluation(benchmark::State& state) {
    FeatureMap f;
    auto* rate = dynamic_cast<IFloat*>(f.map._GetNode("FrameRate"));
    rate->GetValue();
    for (auto _ : state) {
        benchmark::DoNotOptimize(rate->GetValue());
    }
}
BENCHMARK(BM_SwissKnifeEvaluation);

void BM_WriteWithVerify(benchmark::State& state) {
    FeatureMap f;
    auto* width = dynamic_cast<IInteger*>(f.map._GetNode("Width"));
    int64_t value = 16;
    for (auto _ : state) {
        width->SetValue(value);
        value = value == 4096 ? 16 : value + 4;
    }
}
BENCHMARK(BM_WriteWithVerify);

}  // namespace

BENCHMARK_MAIN();
