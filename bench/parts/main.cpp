// SPDX-License-Identifier: MIT
#include "bench/parts/Benchmarks.h"

#include <QGuiApplication>

int main(int argc, char** argv)
{
    // Drawing the status icon needs the toolkit.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication const application(argc, argv);
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
