#include "testbench/program/station_folder.h"

#include "model/ini_store.h"
#include "platform/safe_file.h"

namespace ombrix::bench {

std::string TellStation(const std::string &folder, const DevicePaths &paths, const BenchSetup &setup)
{
    const std::string file = folder + "/Ombrix.ini";
    if (StateOfFile(file) == FileState::Unreadable)
        return file + " can't be read";
    LoadIni(file);
    if (std::string obstacle = IniObstacle(); !obstacle.empty())
        return obstacle;
    IniReady = true;
    IniSet("Ports", "COM1", paths.meter);
    IniSet("Ports", "COM2", paths.calibrator);
    IniSet("Comms", "CALPort", setup.calibrator ? "2" : "0");
    IniSet("Comms", "DPMPort", setup.uut ? "0" : "1");
    IniSet("Comms", "Switch", setup.outputSwitch ? "1" : "0");
    SaveIni();
    ReleaseIni();  // the settings are the station's again
    return IniDirty ? file + " can't be written" : "";
}

}  // namespace ombrix::bench
