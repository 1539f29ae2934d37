// SPDX-License-Identifier: MIT
#include "bench/parts/Benchmarks.h"

#include <QApplication>

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication const application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return EXIT_FAILURE;

    addReportBenchmarks();
    addPresentationBenchmarks();
    addKeyListBenchmarks();
    addCacheBenchmarks();
    addRefreshBenchmarks();
    addStatusIconBenchmark();
    return benchmark::RunSpecifiedBenchmarks() > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
