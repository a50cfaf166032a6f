#include "RatioReporter.h"

#include <algorithm>
#include <cstdio>

namespace bvx::bench {

void RatioReporter::ReportRuns(const std::vector<Run>& runs)
{
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
        // With repetitions the median stands for the workload; without, the one run.
        bool median = run.run_type == Run::RT_Aggregate && run.aggregate_name == "median";
        if (!median && (run.run_type != Run::RT_Iteration || run.iterations == 0)) continue;
        std::string name = run.run_name.str();
        auto slash = name.find('/');
        if (slash == std::string::npos) continue;
        std::string workload = name.substr(0, slash);
        std::string side = name.substr(slash + 1, name.find('/', slash + 1) - slash - 1);
        if (std::find(order_.begin(), order_.end(), workload) == order_.end()) order_.push_back(workload);
        if (!median && medians_.count(workload + "/" + side)) continue;
        if (median) medians_.insert(workload + "/" + side);
        nanoseconds_[workload][side] = run.GetAdjustedRealTime() * 1e9 /
                                       benchmark::GetTimeUnitMultiplier(run.time_unit);
    }
}

void RatioReporter::Finalize()
{
    std::printf("\n%-28s %14s %14s %10s\n", "workload", "ours (ms)", (peer_ + " (ms)").c_str(), "ratio");
    for (const std::string& workload : order_) {
        auto& sides = nanoseconds_[workload];
        if (!sides.count("ours") || !sides.count(peer_)) continue;
        double ours = sides["ours"] / 1e6, peer = sides[peer_] / 1e6;
        std::printf("%-28s %14.3f %14.3f %10.3f\n", workload.c_str(), ours, peer, ours / peer);
    }
    ConsoleReporter::Finalize();
}

} // namespace bvx::bench
