#include <cstdio>
#include <cstring>

#include <benchmark/benchmark.h>

#include <QApplication>

#include "Measure.h"

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    if (argc == 3 && std::strcmp(argv[1], "--measure") == 0)
        return RunMeasurement(argv[2]);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
