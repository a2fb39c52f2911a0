#include "QBLCore/Frame/QBLList.hpp"

#include <list>
#include <memory>

#include "bench/support/Bench.hpp"

namespace {

// The library's lists hold pointers. Times are per element.
using Value = const int*;
const int kValue = 7;

/// Fills a list and destroys it again.
template <class List>
void pushBack(benchmark::State& state) {
    const benchmark::IterationCount size = state.range(0);
    while (state.KeepRunningBatch(size)) {
        List list;
        for (auto i = size; i != 0; --i) list.push_back(&kValue);
        benchmark::DoNotOptimize(list);
    }
}

template <class List>
void fill(List& list, const int* values, unsigned int size) {
    for (unsigned int i = 0; i < size; ++i) list.push_back(&values[i]);
}

long walk(QBLList<Value>& list) {
    long sum = 0;
    for (unsigned int i = 0; i < list.size(); ++i) sum += *list.at(i);
    return sum;
}

long walk(std::list<Value>& list) {
    long sum = 0;
    for (Value value : list) sum += *value;
    return sum;
}

template <class List>
void sequentialWalk(benchmark::State& state) {
    const auto size = static_cast<unsigned int>(state.range(0));
    const auto values = std::make_unique<int[]>(size);
    List list;
    fill(list, values.get(), size);
    while (state.KeepRunningBatch(size)) benchmark::DoNotOptimize(walk(list));
}

const OutputCheck check("QBLList", [] {
    const int values[] = {1, 20, 300, 4000, 50000};
    QBLList<Value> ours;
    std::list<Value> theirs;
    fill(ours, values, 5);
    fill(theirs, values, 5);
    return walk(ours) == 54321 && walk(theirs) == 54321;
});

BENCHMARK_TEMPLATE(pushBack, QBLList<Value>)->Name("BM_QBLList_pushBack")->Arg(1000);
BENCHMARK_TEMPLATE(pushBack, std::list<Value>)->Name("BM_StdList_pushBack")->Arg(1000);
BENCHMARK_TEMPLATE(sequentialWalk, QBLList<Value>)->Name("BM_QBLList_indexedWalk")->Arg(1000);
BENCHMARK_TEMPLATE(sequentialWalk, std::list<Value>)->Name("BM_StdList_iteration")->Arg(1000);

}  // namespace
