#include <cstdio>
#include <cstdlib>

#include <QApplication>

#include "SoakRun.h"

int main(int argc, char** argv) {
    const double minutes = argc == 2 ? std::atof(argv[1]) : 0;
    if (minutes <= 0) {
        std::fprintf(stderr, "the form is: soak MINUTES\n");
        return 2;
    }
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    return SoakRun(minutes).Play();
}
