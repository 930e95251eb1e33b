#include "testbench/bench.h"

namespace ombrix::bench
{

struct Bench::Parts {
};

Bench::Bench(const BenchSetup &) : m_parts(std::make_unique<Parts>()) {}

Bench::~Bench() = default;

} // namespace ombrix::bench
