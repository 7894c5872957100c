// The preferences' document beside what the JSON library alone needs to write and read it.

#include "preferences/preference_encoding.h"

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>

namespace vantrel {
namespace {

std::string defaultDocument() {
    return encodePreferences(AppPreferences()).value();
}

void encode(benchmark::State& state) {
    const AppPreferences preferences;
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(encodePreferences(preferences));
    }
}

void libraryDump(benchmark::State& state) {
    const auto document = nlohmann::ordered_json::parse(defaultDocument());
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(document.dump());
    }
}

void decode(benchmark::State& state) {
    const auto document = defaultDocument();
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(decodePreferences(document));
    }
}

void libraryParse(benchmark::State& state) {
    const auto document = defaultDocument();
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(nlohmann::json::parse(document));
    }
}

BENCHMARK(encode);
BENCHMARK(libraryDump);
BENCHMARK(decode);
BENCHMARK(libraryParse);

} // namespace
} // namespace vantrel

BENCHMARK_MAIN();
