#include "QBLCore/Types/QBLDBTypes.hpp"

#include <string>
#include <unordered_map>

#include "QBLCore/Types/internal/QBLDBTypeTables.hpp"
#include "bench/support/Bench.hpp"

namespace {

constexpr int kCount = kQBLDBDatatypeCodes;

/// The yardstick for names: a map as in a program without the library.
const std::unordered_map<std::string, int>& hashed() {
    static const std::unordered_map<std::string, int>& map = *[] {
        auto* out = new std::unordered_map<std::string, int>;
        for (int i = 0; i < kCount; ++i)
            out->emplace(QBLDBTypes::get()->getName(static_cast<QBLDBDatatype>(i)), i);
        return out;
    }();
    return map;
}

void byCode(benchmark::State& state) {
    const QBLDBTypes* types = QBLDBTypes::get();
    int i = 0;
    for (auto _ : state) {
        i = (i + 1) & 31;
        benchmark::DoNotOptimize(types->QBLDBDatatype2XSType(static_cast<QBLDBDatatype>(i)));
    }
}

void get(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(QBLDBTypes::get());
}

void nameByCode(benchmark::State& state) {
    const QBLDBTypes* types = QBLDBTypes::get();
    int i = 0;
    for (auto _ : state) {
        i = (i + 1) & 31;
        benchmark::DoNotOptimize(types->getName(static_cast<QBLDBDatatype>(i)));
    }
}

/// Copies of the names. next() yields them in the order of their codes.
class Names {
public:
    Names() {
        for (int i = 0; i < kCount; ++i)
            m_names[i] = QBLDBTypes::get()->getName(static_cast<QBLDBDatatype>(i));
    }
    const char* next() {
        m_iNext = m_iNext + 1 < kCount ? m_iNext + 1 : 0;
        return m_names[m_iNext].c_str();
    }

private:
    std::string m_names[kCount];
    int m_iNext = 0;
};

void byName(benchmark::State& state) {
    Names names;
    const QBLDBTypes* types = QBLDBTypes::get();
    for (auto _ : state) benchmark::DoNotOptimize(types->getQBLDBDatatypeCode(names.next()));
}

void byNameHashed(benchmark::State& state) {
    Names names;
    for (auto _ : state) benchmark::DoNotOptimize(hashed().find(names.next())->second);
}

const OutputCheck check("QBLDBTypes", [] {
    Names names;
    for (int i = 0; i < kCount; ++i) {
        const char* name = names.next();
        if (QBLDBTypes::get()->getQBLDBDatatypeCode(name) != hashed().at(name)) return false;
    }
    return true;
});

BENCHMARK(byCode)->Name("BM_QBLDBTypes_byCode");
BENCHMARK(get)->Name("BM_QBLDBTypes_get");
BENCHMARK(nameByCode)->Name("BM_QBLDBTypes_nameByCode");
BENCHMARK(byName)->Name("BM_QBLDBTypes_byName");
BENCHMARK(byNameHashed)->Name("BM_StdUnorderedMap_byName");

}  // namespace
