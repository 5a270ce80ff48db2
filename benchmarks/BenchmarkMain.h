#ifndef BENCHMARKMAIN_H
#define BENCHMARKMAIN_H

/// Runs the benchmarks of a program and prints, for each work that several subjects did, how their processor times
/// compare to ours. A benchmark is named work/subject/arguments, as BENCHMARK_CAPTURE(work, subject, ...) does it; our
/// subjects are those whose name begins with that of a class of the library.
int runBenchmarks(int argc, char **argv);

#endif // BENCHMARKMAIN_H
