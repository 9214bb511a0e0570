// Runs the rows of the speed table and prints it: the median CPU time of the library and of its
// peer, the quotient beside the one that is required, and the memory floor, that is what copying
// the bytes that must be read and written takes on this machine in this run.
//
// Google Benchmark times both sides; its random interleaving spreads the repetitions of all rows
// over the run, so that a change of the machine's speed meets both sides alike. `--rows=TEXT` keeps
// the rows whose name contains TEXT. Exit status 1 when a row falls short.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "harness.h"

namespace {

constexpr int kRepetitions = 15;
constexpr double kSecondsPerRepetition = 0.08;
constexpr std::size_t kCopyBytes = std::size_t{32} << 20;

std::vector<bench::Row>& rows() {
    static std::vector<bench::Row> all;
    return all;
}

double median(std::vector<double> values) {
    if (values.empty()) return 0;
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

// Keeps the seconds per call of every repetition, by benchmark name.
class Collector : public benchmark::BenchmarkReporter {
  public:
    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
            seconds_[run.run_name.function_name].push_back(run.cpu_accumulated_time /
                                                           static_cast<double>(run.iterations));
        }
    }

    double seconds(const std::string& name) const {
        const auto found = seconds_.find(name);
        return found == seconds_.end() ? 0 : median(found->second);
    }

  private:
    std::map<std::string, std::vector<double>> seconds_;
};

void add_benchmark(const std::string& name, std::function<void()> call) {
    benchmark::RegisterBenchmark(name.c_str(),
                                 [call](benchmark::State& state) {
                                     for (auto _ : state) call();
                                 })
        ->Repetitions(kRepetitions)
        ->MinTime(kSecondsPerRepetition);
}

void add_copy_benchmark() {
    auto source = std::make_shared<std::vector<char>>(kCopyBytes, 1);
    auto target = std::make_shared<std::vector<char>>(kCopyBytes);
    add_benchmark("copy", [source, target] {
        std::memcpy(target->data(), source->data(), kCopyBytes);
        benchmark::ClobberMemory();
    });
}

// Returns the number of rows that fall short.
int print_table(const std::vector<bench::Row>& table, const Collector& times) {
    // A copy of n bytes reads n and writes n.
    const double seconds_per_byte = times.seconds("copy") / (2.0 * static_cast<double>(kCopyBytes));
    std::printf(
        "| row | peer | library ms | peer ms | times faster | at least | memory floor ms |\n");
    std::printf("|---|---|---:|---:|---:|---:|---:|\n");
    int short_rows = 0;
    for (const bench::Row& row : table) {
        const double ours = times.seconds(row.name + "/ours");
        const double theirs = times.seconds(row.name + "/theirs");
        const double faster = ours > 0 ? theirs / ours : 0;
        const bool enough = row.required <= 0 || faster >= row.required;
        if (!enough) ++short_rows;
        std::printf("| %s | %s | %.3f | %.3f | %.2f%s | %.1f | %.3f |\n", row.name.c_str(),
                    row.peer.c_str(), ours * 1e3, theirs * 1e3, faster, enough ? "" : " (short)",
                    row.required, static_cast<double>(row.floor_bytes) * seconds_per_byte * 1e3);
    }
    return short_rows;
}

// Takes `--rows=TEXT` out of the arguments.
std::string wanted_rows(int& argc, char** argv) {
    std::string wanted;
    const auto last = std::remove_if(argv + 1, argv + argc, [&wanted](const char* argument) {
        if (std::strncmp(argument, "--rows=", 7) != 0) return false;
        wanted = argument + 7;
        return true;
    });
    argc = static_cast<int>(last - argv);
    return wanted;
}

}  // namespace

namespace bench {

bool add(Row row) {
    rows().push_back(std::move(row));
    return true;
}

}  // namespace bench

int main(int argc, char** argv) {
    // Freed pages stay with the process: otherwise whether a side pays for fresh ones in every call
    // would depend on what the other rows have allocated before it.
    mallopt(M_MMAP_THRESHOLD, 1 << 30);
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    const std::string wanted = wanted_rows(argc, argv);
    std::string interleave = "--benchmark_enable_random_interleaving=true";
    std::vector<char*> arguments(argv, argv + argc);
    arguments.push_back(interleave.data());
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());

    std::vector<bench::Row> table;
    add_copy_benchmark();
    for (const bench::Row& row : rows()) {
        if (row.name.find(wanted) == std::string::npos) continue;
        const bench::Sides sides = row.prepare();
        add_benchmark(row.name + "/ours", sides.ours);
        if (sides.theirs) add_benchmark(row.name + "/theirs", sides.theirs);
        table.push_back(row);
    }
    Collector times;
    benchmark::RunSpecifiedBenchmarks(&times);
    return print_table(table, times) == 0 ? 0 : 1;
}
