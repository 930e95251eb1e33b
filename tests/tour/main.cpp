// The tour: a scripted operator takes a meter through the station in the real window, off screen.
//
// Without options it works in the built-in simulator: Establish and every range of a DC meter, each grid row printed
// as it appears, pictures of each page. With --bench it calibrates one range of an emulated meter on pseudo-terminals,
// in hardware mode with its real waits.

#include "tour/toolkit_noise.h"
#include "tour/tour.h"

#include <QApplication>
#include <QCommandLineParser>

#include <cstdio>

int main(int argc, char **argv)
{
    ombrix::tour::DropToolkitNoise();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QApplication::setStyle("Fusion");

    QCommandLineParser parser;
    parser.setApplicationDescription("Takes a meter through the station without a person.");
    parser.addHelpOption();
    parser.addOption({"pictures", "Leave a picture of each page in <folder>.", "folder"});
    parser.addOption({"bench", "One range, or one point of an analog output, in real time against the testbench."});
    parser.addOption({"testbench", "With --bench: where ombrix-testbench lies.", "path",
                      QApplication::applicationDirPath() + "/ombrix-testbench"});
    parser.addOption({"until-killed", "In the current folder's station, under <guard>, until it is killed.", "guard"});
    parser.addOption({"first-meter", "The first chapter of the operator's guide, in real time against the testbench."});
    parser.addOption({"theme", "light or dark.", "theme", "light"});
    parser.addPositionalArgument(
        "board", "With --bench: dc, ac, ac2, ac3, lc, tc, temp or rtd; vf or an for an analog output.", "[board]");
    parser.process(application);

    if (parser.isSet("until-killed"))
        return ombrix::tour::RunUntilKilled(parser.value("until-killed").toStdString()) ? 0 : 1;

    const QStringList boards = parser.positionalArguments();
    const ombrix::tour::Options options{
        .pictures = parser.value("pictures"),
        .board = boards.isEmpty() ? "dc" : boards.first(),
        .theme = parser.value("theme"),
        .testbench = parser.value("testbench"),
    };
    const bool good = parser.isSet("bench") ? ombrix::tour::RunBench(options)
                      : parser.isSet("first-meter")
                          ? ombrix::tour::RunFirstMeterInRealTime(options)
                          : ombrix::tour::RunFirstMeter(options) && ombrix::tour::RunSimulation(options) &&
                                ombrix::tour::RunAnalogWalk(options) && ombrix::tour::RunProcessMeters(options) &&
                                ombrix::tour::RunProcedures(options);
    std::puts(good ? "The tour ended well." : "The tour FAILED.");
    return good ? 0 : 1;
}
