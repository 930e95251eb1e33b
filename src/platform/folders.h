// Where the program's files lie: the folder that the station works in, and the samples that were installed with it.
#pragma once

#include <string>

namespace ombrix {

/// Why nobody can work in a folder; "" when one can.
std::string FolderTrouble(const std::string &path);

/// Where the user's programs keep their data: $XDG_DATA_HOME, or .local/share in his home. "" when he has no home.
std::string UserDataFolder();

struct StationFolder {
    std::string path;
    bool ofProgram = true;  ///< the program's own folder
    std::string trouble;    ///< why it isn't the user's, where it should be; "" nothing
};

/// The folder of a station that was told none. It is the program's own; when the program is installed for everybody, or
/// its folder can't be written, it is `ombrix` in the user's data, made when it is missing. When that can't be, it is the
/// program's own after all.
StationFolder FindStationFolder(const std::string &programFolder, const std::string &userData);

/// The samples that were installed with a program: `../share/ombrix/samples` seen from its folder, "" when there are none.
std::string InstalledSamples(const std::string &programFolder);
/// From here on a file that the station's folder hasn't is looked for in this one too; "" none.
void LookForSamplesIn(const std::string &folder);
/// The folder told last.
const std::string &SampleFolder();
/// The path of a file that is named without one: the station's own, or when it has none the installed one. A name with
/// a path, and one that is found nowhere, is what it is.
std::string FindFile(const std::string &name);

}  // namespace ombrix
