#include "BenchmarkMain.h"

#include <benchmark/benchmark.h>

#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace {

struct Result
{
    std::string subject;
    double cpuTime;
};

bool isOurs(const std::string &subject)
{
    return subject.rfind("Utils", 0) == 0 || subject.rfind("WaitingSpinnerWidget", 0) == 0;
}

class RatioReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run> &runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs) {
            if (run.error_occurred)
                continue;
            const std::string &name = run.run_name.function_name;
            const std::string::size_type slash = name.find('/');
            if (slash == std::string::npos)
                continue;
            const std::string work = name.substr(0, slash) + '/' + run.run_name.args;
            results[work].push_back({name.substr(slash + 1), run.GetAdjustedCPUTime()});
        }
    }

    void Finalize() override
    {
        ConsoleReporter::Finalize();
        for (const auto &[work, subjects] : results) {
            for (const Result &ours : subjects) {
                if (!isOurs(ours.subject))
                    continue;
                for (const Result &other : subjects) {
                    if (!isOurs(other.subject)) {
                        GetOutputStream() << work << ": " << ours.subject << " / " << other.subject << " = "
                                          << ours.cpuTime / other.cpuTime << '\n';
                    }
                }
            }
        }
    }

private:
    std::map<std::string, std::vector<Result>> results;
};

} // namespace

int runBenchmarks(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
}
