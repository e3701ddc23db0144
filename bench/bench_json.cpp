// Copies, assignments, moves and look-ups of the JSON containers, each next to the same work on the standard container
// that they hold. `floor` in the label names it.
#include <benchmark/benchmark.h>

#include <any>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "zemo/json_containers.h"

namespace {

using ZEMO::Core::JsonArrayContainer;
using ZEMO::Core::JsonContainer;
using Map = std::map<std::string, std::any>;
using Vector = std::vector<std::any>;

Map makeMap(int64_t size) {
    Map map;
    for (int64_t i = 0; i < size; ++i) {
        std::any value = i % 2 ? std::any(static_cast<int>(i)) : std::any("a text of more than sixteen bytes");
        map.emplace("key" + std::to_string(i), std::move(value));
    }
    return map;
}

Vector makeVector(int64_t size) {
    Vector vector;
    for (auto& [key, value] : makeMap(size)) vector.push_back(std::move(value));
    return vector;
}

JsonContainer makeObject(int64_t size) {
    JsonContainer object;
    object.values = makeMap(size);
    return object;
}

JsonArrayContainer makeArray(int64_t size) {
    JsonArrayContainer array;
    array.values = makeVector(size);
    return array;
}

void finish(benchmark::State& state, const std::string& floor = {}) {
    state.SetItemsProcessed(state.iterations() * state.range(0));
    if (!floor.empty()) state.SetLabel("floor=" + floor + "/" + std::to_string(state.range(0)));
}

template <class Container>
void copy(benchmark::State& state, const Container& source) {
    for (auto _ : state) {
        Container target(source);
        benchmark::DoNotOptimize(target);
        benchmark::ClobberMemory();
    }
}

template <class Container>
void assign(benchmark::State& state, const Container& source) {
    Container target(source);
    for (auto _ : state) {
        target = source;
        benchmark::DoNotOptimize(target);
        benchmark::ClobberMemory();
    }
}

template <class Container>
void moveTwice(benchmark::State& state, Container source) {
    for (auto _ : state) {
        Container target(std::move(source));
        benchmark::DoNotOptimize(target);
        source = std::move(target);
        benchmark::DoNotOptimize(source);
        benchmark::ClobberMemory();
    }
}

void lookUp(benchmark::State& state, const Map& map) {
    std::vector<std::string> keys;
    for (const auto& [key, value] : map) keys.push_back(key);
    for (auto _ : state) {
        for (const std::string& key : keys) {
            const auto* value = std::any_cast<int>(&map.at(key));
            benchmark::DoNotOptimize(value);
        }
    }
}

void copyObject(benchmark::State& state) {
    copy(state, makeObject(state.range(0)));
    finish(state, "copyMap");
}
void copyMap(benchmark::State& state) {
    copy(state, makeMap(state.range(0)));
    finish(state);
}
void assignObject(benchmark::State& state) {
    assign(state, makeObject(state.range(0)));
    finish(state, "assignMap");
}
void assignMap(benchmark::State& state) {
    assign(state, makeMap(state.range(0)));
    finish(state);
}
void lookUpObject(benchmark::State& state) {
    lookUp(state, makeObject(state.range(0)).values);
    finish(state, "lookUpMap");
}
void lookUpMap(benchmark::State& state) {
    lookUp(state, makeMap(state.range(0)));
    finish(state);
}
void copyArray(benchmark::State& state) {
    copy(state, makeArray(state.range(0)));
    finish(state, "copyVector");
}
void copyVector(benchmark::State& state) {
    copy(state, makeVector(state.range(0)));
    finish(state);
}
void assignArray(benchmark::State& state) {
    assign(state, makeArray(state.range(0)));
    finish(state, "assignVector");
}
void assignVector(benchmark::State& state) {
    assign(state, makeVector(state.range(0)));
    finish(state);
}
void moveArray(benchmark::State& state) {
    moveTwice(state, makeArray(state.range(0)));
    finish(state, "moveVector");
}
void moveVector(benchmark::State& state) {
    moveTwice(state, makeVector(state.range(0)));
    finish(state);
}

#define ZEMO_BENCHMARK(name) BENCHMARK(name)->Arg(10)->Arg(1000)
ZEMO_BENCHMARK(copyObject);
ZEMO_BENCHMARK(copyMap);
ZEMO_BENCHMARK(assignObject);
ZEMO_BENCHMARK(assignMap);
ZEMO_BENCHMARK(lookUpObject);
ZEMO_BENCHMARK(lookUpMap);
ZEMO_BENCHMARK(copyArray);
ZEMO_BENCHMARK(copyVector);
ZEMO_BENCHMARK(assignArray);
ZEMO_BENCHMARK(assignVector);
ZEMO_BENCHMARK(moveArray);
ZEMO_BENCHMARK(moveVector);

}  // namespace
