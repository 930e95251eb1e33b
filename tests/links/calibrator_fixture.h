// A calibrator on an open line, and its far end.
#pragma once

#include "links/links_fixture.h"

#include <algorithm>

namespace ombrix::test {

class Calibrator : public LinksTest
{
protected:
    void SetUp() override
    {
        LinksTest::SetUp();
        OpenCalibratorPort();
    }

    int Count(const std::string &write) const
    {
        const auto writes = calibrator.Writes();
        return static_cast<int>(std::count(writes.begin(), writes.end(), write));
    }

    void ByHand()
    {
        Automatic = false;
        CalPort = 0;
    }
};

}  // namespace ombrix::test
