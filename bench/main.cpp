// Runs every case and ends with one table: for each of our routines the time
// per operation and its ratio to each peer measured in the same run (below
// 1: we are faster). Benchmarks are named "case/implementation"; our
// implementations are the routine names (N_..., M_...), the others are
// "kernel" (our minimal check-free kernel), "SISL", "OCCT" and
// "OCCT cached". Groups read "operation/case...". Each takes the median of its repetitions, which are
// interleaved in random order so that a busy moment of the machine does not
// fall on one library alone.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <tuple>
#include <vector>

namespace {

const char *const kPeers[] = {"kernel", "SISL", "OCCT", "OCCT cached"};
// The operations in the order the table lists them; within one, the cases
// in the order they were registered.
const char *const kOperations[] = {"point", "ders", "surface point", "surface ders", "insert knot", "basis",
                                   "banded solve"};

int64_t rank(const std::string &group) {
    const std::string operation = group.substr(0, group.find('/'));
    for (size_t i = 0; i < std::size(kOperations); ++i)
        if (operation == kOperations[i]) return int64_t(i);
    return int64_t(std::size(kOperations));
}

class TableReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run> &runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs) {
            const bool single = run.run_type == Run::RT_Iteration && run.repetitions <= 1;
            if (run.error_occurred || !(single || run.aggregate_name == "median")) continue;
            const auto rate = run.counters.find("items_per_second");
            if (rate == run.counters.end() || rate->second.value <= 0) continue;
            const std::string &name = run.run_name.function_name;
            const size_t cut = name.rfind('/');
            if (cut == std::string::npos) continue;
            const std::string group = name.substr(0, cut), impl = name.substr(cut + 1);
            auto [at, fresh] = first_.emplace(group, run.family_index);
            if (!fresh) at->second = std::min(at->second, run.family_index);
            times_[group][impl] = 1e9 / rate->second.value;
        }
    }

    void PrintTable() const {
        std::printf("\n| case | ns/op |");
        for (const char *p : kPeers) std::printf(" / %s |", p);
        std::printf("\n|---|---:|");
        for (size_t i = 0; i < std::size(kPeers); ++i) std::printf("---:|");
        std::printf("\n");
        // Whatever order the cases ran in.
        std::vector<std::tuple<int64_t, int64_t, std::string>> order;
        for (const auto &[group, first] : first_) order.emplace_back(rank(group), first, group);
        std::sort(order.begin(), order.end());
        for (const auto &[operation, first, group] : order) {
            const auto &t = times_.at(group);
            for (const auto &[impl, ns] : t) {
                if (impl.rfind("N_", 0) != 0 && impl.rfind("M_", 0) != 0) continue;
                // The group's first part names the operation, which the
                // routine's name says already.
                std::string label = group.substr(group.find('/') + 1);
                for (char &c : label)
                    if (c == '/') c = ' ';
                std::printf("| %s %s | %.1f |", impl.c_str(), label.c_str(), ns);
                for (const char *p : kPeers) {
                    const auto peer = t.find(p);
                    if (peer == t.end()) std::printf(" |");
                    else std::printf(" %.2f |", ns / peer->second);
                }
                std::printf("\n");
            }
        }
    }

private:
    std::map<std::string, int64_t> first_;
    std::map<std::string, std::map<std::string, double>> times_;
};

bool given(int argc, char **argv, const char *flag) {
    for (int i = 1; i < argc; ++i)
        if (std::strncmp(argv[i], flag, std::strlen(flag)) == 0) return true;
    return false;
}

}  // namespace

int main(int argc, char **argv) {
    // Defaults that the command line may override.
    std::vector<char *> args(argv, argv + argc);
    char reps[] = "--benchmark_repetitions=5", shuffle[] = "--benchmark_enable_random_interleaving=true",
         quiet[] = "--benchmark_display_aggregates_only=true", brief[] = "--benchmark_min_time=0.2";
    if (!given(argc, argv, "--benchmark_repetitions")) args.push_back(reps);
    if (!given(argc, argv, "--benchmark_enable_random_interleaving")) args.push_back(shuffle);
    if (!given(argc, argv, "--benchmark_display_aggregates_only")) args.push_back(quiet);
    if (!given(argc, argv, "--benchmark_min_time")) args.push_back(brief);
    int count = int(args.size());
    args.push_back(nullptr);
    benchmark::Initialize(&count, args.data());
    if (benchmark::ReportUnrecognizedArguments(count, args.data())) return 1;
    TableReporter table;
    benchmark::RunSpecifiedBenchmarks(&table);
    table.PrintTable();
    benchmark::Shutdown();
    return 0;
}
