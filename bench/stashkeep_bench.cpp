// Benchmarks of functions over inputs of two sizes.
#include <benchmark/benchmark.h>

#include "cli/files.h"
#include "inspect/disc_savegame.h"
#include "inspect/flag_dump.h"
#include "symbols/symbol_reader.h"
#include "symbols/symbol_tables.h"
#include "symbols/tokenizer.h"
#include "test_support.h"

namespace stashkeep {
namespace {

/// About `size` bytes of flags, world flags, comments and quotes, in the proportions of typical sources.
std::string source(std::size_t size) {
    std::string text;
    for (int i = 0; text.size() < size; ++i) {
        const std::string number = std::to_string(i);
        if (i % 12 == 0) text += "# The flags of room " + number + ", in the order in which they are met\n";
        if (i % 40 == 0) text += "text \"Room \\\"" + number + "\\\"\\n\", 3\n";
        text += i % 3 == 0 ? ".flags FLAG_DOOR_STATE_" + number + ", 2\n" : ".flag FLAG_CHEST_TAKEN_" + number + "\n";
        text += "WORLDFLAG_ROOM_VISITED_" + number + " = WORLDFLAGS_START + " + number + "\n";
    }
    return text;
}

/// 100 KB and 16 MB, to show whether the time grows linearly.
void bothSizes(benchmark::internal::Benchmark* runs) {
    runs->Arg(100'000)->Arg(16'000'000)->Unit(benchmark::kMillisecond);
}

void setBytes(benchmark::State& state, std::size_t bytes) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

template <auto split>
void tokenize(benchmark::State& state) {
    const std::string text = source(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        asmSectionText.clear();
        benchmark::DoNotOptimize(split(text));
    }
    setBytes(state, text.size());
}

BENCHMARK(tokenize<splitLine>)->Name("splitLine")->Apply(bothSizes);
BENCHMARK(tokenize<splitAsmLine>)->Name("splitAsmLine")->Apply(bothSizes);

void readSymbols(benchmark::State& state) {
    const InFolder folder;
    const std::string text = source(static_cast<std::size_t>(state.range(0)));
    std::filesystem::create_directory("generated");
    for (const char* path : {"flags", "generated/world.inc"}) writeFile(path, text);
    writeFile("world", "#AsmSectionBegin\ninclude world.inc\n#AsmSectionEnd\n");
    writeFile("ids", "");
    for (auto _ : state) {
        gameFlagTable.clear();
        worldFlagTable.clear();
        captured([] { benchmark::DoNotOptimize(generateSaveGame("flags", "world", "ids")); });
    }
    setBytes(state, 2 * text.size());
}
BENCHMARK(readSymbols)->Name("generateSaveGame")->Apply(bothSizes);

void dumpFlags(benchmark::State& state) {
    gameFlagTable.clear();
    for (int i = 0; i < 1024; ++i) gameFlagTable["FLAG_NUMBER_" + std::to_string(i)] = {i, 1};
    worldFlagTable.clear();
    for (int i = 0; i < 256; ++i) worldFlagTable["WORLDFLAG_NUMBER_" + std::to_string(i)] = {i, 1};
    const DiscSavegame savegame{};
    std::size_t printed = 0;
    for (auto _ : state) printed = captured([&] { printFlags(savegame); }).size();
    setBytes(state, printed);
}
BENCHMARK(dumpFlags)->Name("printFlags, a full area")->Unit(benchmark::kMicrosecond);

void checksum(benchmark::State& state) {
    const ByteVector bytes(static_cast<std::size_t>(state.range(0)), 1);
    for (auto _ : state) benchmark::DoNotOptimize(xorChecksum(bytes));
    setBytes(state, bytes.size());
}
BENCHMARK(checksum)->Name("xorChecksum")->Arg(221)->Arg(16'000'000);

void load(benchmark::State& state) {
    const InFolder folder;
    const auto size = static_cast<std::size_t>(state.range(0));
    writeFile("file", std::string(size, 'x'));
    for (auto _ : state) benchmark::DoNotOptimize(loadFile("file"));
    setBytes(state, size);
}
BENCHMARK(load)->Name("loadFile")->Apply(bothSizes);

}  // namespace
}  // namespace stashkeep

BENCHMARK_MAIN();
