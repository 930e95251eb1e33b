// The end of the program at any moment of the Setup page: the session is dropped, and established again.

#include "journeys/page_loops.h"
#include "session/state.h"

using namespace ombrix;
using namespace ombrix::test;

namespace {

constexpr int kRestart = 3000;  // milliseconds

PageScript SetupScript()
{
    PageScript script;
    script.begins = [](BenchStation &station) {
        station.person.Clicks("cmdSetup").WaitsFor("optManual").Clicks("optManual").Clicks("optAutomatic");
        station.person.Waits(kRestart).Clicks("cmdEstablish");
    };
    script.works = [begins = script.begins](BenchStation &station, const std::string &) {
        begins(station);
        station.person.WaitsUntil("it is established", [] { return Established && NavigationIsFree(); });
    };
    return script;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(OnSetup, QuitLoop, testing::ValuesIn(QuitCases(SetupScript(), {0, 20, 500, 1100, 2000, 4000})),
                         NameOfQuitCase);
