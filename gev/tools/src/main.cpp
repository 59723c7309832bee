// ry-stream-bench: streams from one camera through the producer, or times register reads.
#include <cstdio>
#include <string>
#include <vector>

#include "bench_options.h"
#include "bench_session.h"

int main(int argc, char** argv) {
    using namespace ry::gev::tools;
    std::string error;
    const auto options = ParseBenchOptions(std::vector<std::string>(argv + 1, argv + argc), error);
    if (!options) {
        std::fprintf(stderr, "%s\n%s", error.c_str(), BenchUsage());
        return 2;
    }
    BenchSession session;
    if (!session.Open(*options, error)) {
        std::fprintf(stderr, "%s\n", error.c_str());
        return 1;
    }
    return options->latencyReads > 0 ? session.MeasureLatency(options->latencyReads)
                                     : session.MeasureStream(*options);
}
