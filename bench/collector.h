// Prints what the benchmarks report and keeps it, so that a program can compare medians.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

class Collector : public benchmark::ConsoleReporter {
public:
    Collector()
        : ConsoleReporter(OO_None)
    {
    }

    void ReportRuns(const std::vector<Run> &runs) override
    {
        for (const Run &run : runs) {
            if (run.run_type == Run::RT_Iteration && run.iterations > 0)
                times_[nameOf(run)].push_back(run.real_accumulated_time /
                                              static_cast<double>(run.iterations));
        }
        ConsoleReporter::ReportRuns(runs);
    }

    bool has(const std::string &name) const { return times_.count(name) > 0; }

    // Seconds an iteration; `name` is "function" or "function/argument". Throws std::out_of_range if that did
    // not run.
    double median(const std::string &name)
    {
        auto &times = times_.at(name);
        std::sort(times.begin(), times.end());
        return times[times.size() / 2];
    }

private:
    static std::string nameOf(const Run &run)
    {
        return run.run_name.function_name + (run.run_name.args.empty() ? "" : "/" + run.run_name.args);
    }

    std::map<std::string, std::vector<double>> times_;
};
