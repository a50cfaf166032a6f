// Prints Google Benchmark's table, then one row per workload: our time over
// the peer's, measured in the same run (the medians when repeated). Benchmarks are named
// "<workload>/ours" and "<workload>/<peer>".
#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <set>
#include <string>
#include <vector>

namespace bvx::bench {

class RatioReporter : public benchmark::ConsoleReporter {
public:
    explicit RatioReporter(std::string peer) : peer_(std::move(peer)) {}
    void ReportRuns(const std::vector<Run>& runs) override;
    void Finalize() override;

private:
    std::string peer_;
    std::vector<std::string> order_;
    std::map<std::string, std::map<std::string, double>> nanoseconds_;
    std::set<std::string> medians_;
};

} // namespace bvx::bench
