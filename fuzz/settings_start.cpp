// Fuzzes: src/model/settings.cpp src/model/nominal_settings.cpp src/model/analog_settings.cpp
// Fuzzes: src/model/port_settings.cpp src/model/kept_config.cpp
//
// A station that starts on any files in its folder, its own and those of an older one: every value is one that its
// procedures can use, and a second start changes nothing.

#include "fuzz/support/case.h"
#include "fuzz/support/folder.h"
#include "model/kept_config.h"
#include "model/settings.h"
#include "platform/safe_file.h"
#include "platform/text.h"
#include "session/outlets.h"
#include "session/state.h"
#include "support/fresh_settings.h"
#include "support/usable_settings.h"

#include <algorithm>
#include <unistd.h>

using namespace ombrix;
using namespace ombrix::fuzz;

namespace {

void Forget()
{
    InitSessionState();
    test::ForgetSettings();
}

void Start()
{
    Forget();
    InitTables();
    LoadKeptConfig();
}

void RequireUsable()
{
    const std::string broken = test::UnusableSetting();
    Require(broken.empty(), broken);
}

// Files of a case: "@NAME" on a line of its own begins each.
void MakeFiles(const std::string &text)
{
    constexpr std::string_view kNames[] = {"Ombrix.ini",   "Ombrix.sss",   "Gains.sss",     "ISource.sss",
                                           "QDTarget.sss", "VFLimits.sss", "SFNames.sss",   "dcratio.fil",
                                           "strain.fil",   "InitFile",     "KeptConfig.txt"};
    std::string name = "Ombrix.ini";
    std::string bytes;
    const auto leave = [&] {
        if (std::find(std::begin(kNames), std::end(kNames), name) != std::end(kNames) && !bytes.empty())
            WriteFileOfCase(name, bytes);
        bytes.clear();
    };
    for (const std::string &line : Split(text, '\n')) {
        if (!line.starts_with('@')) {
            bytes += line + "\n";
            continue;
        }
        leave();
        name = line.substr(1);
    }
    leave();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    Require(chdir(OwnFolder().c_str()) == 0, "the folder of the case can be entered");
    outlets = Outlets();
    EmptyOwnFolder();
    Case input(bytes, size);
    MakeFiles(input.Rest());
    Start();
    RequireUsable();
    const auto settled = ReadFile("Ombrix.ini");
    Start();
    RequireUsable();
    Require(ReadFile("Ombrix.ini") == settled, "a second start changes nothing");
    return 0;
}
