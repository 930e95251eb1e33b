// A plain meter on an open line, and its far end in payloads.
#pragma once

#include "links/links_fixture.h"

#include <string>
#include <vector>

namespace ombrix::test {

class MeterOperations : public LinksTest
{
protected:
    void SetUp() override
    {
        LinksTest::SetUp();
        MeterKind = kDpm;
        OpenMeterPort();
    }

    /// The payloads that the meter heard.
    std::vector<std::string> Payloads() const
    {
        std::vector<std::string> payloads;
        for (const std::string &write : meter.Writes())
            payloads.push_back(write.substr(2, write.size() - 3));
        return payloads;
    }

    void Answers(const std::string &payload, const std::string &line, int afterMs = 0)
    {
        meter.Answers("*1" + payload + "\r", line + "\r", afterMs);
    }
};

}  // namespace ombrix::test
