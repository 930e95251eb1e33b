#include "procedures/station_fixture.h"

namespace ombrix::test
{
namespace
{

class RangePage : public Station
{
};

TEST_F(RangePage, FirstLook)
{
    OpensSimulated(4)
        .Clicks("cmdReady")
        .WaitsFor("cmdRepeat")
        .Clicks("cmdRepeat")
        .WaitsFor("cmdRepeat")
        .Does([] { ScriptedOperator::TakesPicture("/tmp/range1.png"); });
    EXPECT_TRUE(person.Runs());
}

} // namespace
} // namespace ombrix::test
