// Two loops for any page's script: each fault at each of its exchanges, and Quit at any of its moments.
//
// A page tells its script once, as a PageScript, and asks for both loops where its journeys stand:
//   INSTANTIATE_TEST_SUITE_P(OnGnd, FaultLoop, testing::ValuesIn(FaultCases(script, Stride(3))), NameOfFaultCase);
//   INSTANTIATE_TEST_SUITE_P(OnGndElsewhere, FaultLoop,
//                            testing::ValuesIn(OtherRoutes(scriptOnRoute, {Route::Uut, "junk", 31})), NameOfFaultCase);
//   INSTANTIATE_TEST_SUITE_P(OnGnd, QuitLoop, testing::ValuesIn(QuitCases(script, {0, 1, 450})), NameOfQuitCase);
#pragma once

#include "support/bench_station.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <vector>

namespace ombrix::test {

/// What stands between the station and the meter; by hand there is no calibrator.
enum class Route { Direct, Uut, Manual };
const char *NameOf(Route route);
Wiring WiringOf(int board, Route route, unsigned seed);

struct PageScript {
    Wiring wiring;
    /// Tells the operator what he does on the page, from the click that opens it until navigation is free again. He is
    /// patient for a time that the fault's name may shorten, and stops what goes no further. Navigation is free before.
    /// Where he believes what the page says of a word, the bench's truth is asked whether it is so.
    std::function<void(BenchStation &station, const std::string &fault)> works;
    /// Tells him the same up to the click behind which Quit may come at any moment.
    std::function<void(BenchStation &station)> begins;
    /// After the last fault: that the page does its work on a sound bench, by the truth that the bench knows.
    std::function<void(BenchStation &station)> proves;
};

/// Tells the operator to click, and to find navigation free within so many seconds.
void Leaves(BenchStation &station, const std::string &button, int seconds);

/// Every run takes a shorter walk than the long one, which ./test --soak takes: each exchange.
int Stride(int shortWalk);

// ---- faults ----

struct FaultCase {
    std::string fault;
    bool lasting;
    int every;          ///< exchanges from one run to the next
    PageScript script;  ///< empty where Establish itself is the script
};

/// Each fault that the bench knows, once and lasting.
std::vector<FaultCase> FaultCases(const PageScript &script, int every);
/// The same with Stride(shortWalk); the short walk takes only the lasting ones, and of them those with these names when
/// there are any: those that reach what is special about the page.
std::vector<FaultCase> LastingFaultCases(const PageScript &script, int shortWalk,
                                         const std::vector<std::string> &names = {});
/// What the short walk takes of a page on another route.
struct ShortWalk {
    Route route;
    std::string fault;  ///< lasting
    int every;
};
/// The same script through the calibrator's meter port and by hand. The long walk takes each fault that can reach such a
/// station, the short one what it is told.
std::vector<FaultCase> OtherRoutes(const std::function<PageScript(Route)> &scriptOn, const ShortWalk &shortWalk);
/// Puts what no page means into words of the meter, so that a page has something to put right.
void Disturbs(BenchStation &station, const std::vector<int> &words);
/// A fault of the bench's calibrator, of its output or of its line: a page that applies nothing, and a station without a
/// calibrator, never meet it.
bool IsOfTheCalibrator(const std::string &fault);
/// A fault by which the meter itself shows what isn't so.
bool IsOfTheDisplay(const std::string &fault);
/// Nobody can read a true value: the one reading that has moved, or that has lost its last digit, looks like any other.
bool DisplayLies(const BenchStation &station, const std::string &fault);
/// The window says that nobody knows what stands on the terminals: an operator keeps his hands off.
bool InputIsUnknown();
void PrintTo(const FaultCase &each, std::ostream *out);
std::string NameOfFaultCase(const testing::TestParamInfo<FaultCase> &info);

/// One station goes through the script again and again. Each time a fault begins at the next exchange.
class FaultLoop : public testing::TestWithParam<FaultCase>
{
protected:
    FaultLoop();
    ~FaultLoop() override;

    /// The operator follows what he was told.
    void Runs();
    /// Another wiring ends the session.
    void DropsTheSession();
    /// What the operator does about a device that was pulled.
    void EstablishesAgain();

    /// Afterwards the loop knows which words the page writes.
    int ExchangesOfACleanRun();
    void RunsIntoTheFaultAt(int exchange);
    void ExpectWhatIsGivenBack();
    bool PortGoes() const { return GetParam().fault.ends_with("port-gone"); }

    BenchStation station;
    std::vector<std::string> failures;  ///< run-time faults that were told

private:
    void WorksThePage();
    void ExpectNoOutputUntold();
    void ExpectNoOtherWordChanged(const bench::Words &before);

    std::set<int> m_ownWords;  ///< that the page writes
    bench::Words m_found{};    ///< by the clean run
    bench::Words m_left{};     ///< behind it
};

// ---- the end of the program ----

struct QuitCase {
    int after;      ///< milliseconds behind the script's last click
    unsigned seed;  ///< 0, or draws any moment of the whole script and the road on which the end comes
    PageScript script;
};

/// At these moments by the button, and at random ones of the page's whole work by the button, the window's close box or
/// a signal. The long walk takes each of these moments and sixty random ones, the short one every second and two.
std::vector<QuitCase> QuitCases(const PageScript &script, const std::vector<int> &moments);
void PrintTo(const QuitCase &each, std::ostream *out);
std::string NameOfQuitCase(const testing::TestParamInfo<QuitCase> &info);

class QuitLoop : public testing::TestWithParam<QuitCase>
{
};

}  // namespace ombrix::test
