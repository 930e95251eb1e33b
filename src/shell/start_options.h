// What the station is told when it starts.
#pragma once

#include <QStringList>

#include <string>

namespace ombrix {

struct StartOptions {
    bool help = false;
    bool version = false;
    bool simulate = false;  ///< begin in the simulator
    std::string station;    ///< the folder to work in, "" the usual one
    std::string trace;      ///< the file that gets what is said on the lines, "" none
    std::string trouble;    ///< what is wrong with the options, "" nothing
};

/// The arguments begin with the program's name. Paths become absolute, seen from the current folder.
StartOptions ReadStartOptions(const QStringList &arguments);

/// What is left to do of them once the station stands: the simulator is switched on as by the operator.
void BeginAsTold(const StartOptions &options);

/// The text of --help.
std::string StartUsage();

}  // namespace ombrix
