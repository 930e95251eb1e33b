#include "session/page_frame.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <utility>

using namespace ombrix;

namespace {

constexpr int kStep = 7;
constexpr int kOther = 8;

class Registering : public testing::Test
{
protected:
    Registering() : m_before(std::exchange(pageTables, {})) {}
    ~Registering() override { pageTables = m_before; }

    std::string order;

private:
    PageTables m_before;
};

StepRecord Allowed(bool on)
{
    StepRecord record;
    record.allowed = [on](int) { return on; };
    return record;
}

}  // namespace

TEST_F(Registering, WhatSeveralFilesTellOfAStepIsPutTogetherInWhateverOrder)
{
    StepRecord input;
    input.takesInput = true;
    const StepRecord page = {[this] { order += "entered"; }};
    const StepRecord told[2][3] = {{Allowed(false), page, input}, {input, page, Allowed(false)}};
    for (const auto &records : told) {
        order.clear();
        pageTables = {};
        for (const StepRecord &record : records)
            RegisterSteps({kStep}, record);
        const StepRecord known = RecordOfStep(kStep);
        known.enter();
        EXPECT_EQ(order, "entered");
        EXPECT_FALSE(StepIsAllowed(kStep, 0));
        EXPECT_TRUE(known.takesInput);
    }
    EXPECT_TRUE(StepIsAllowed(kOther, 0)) << "nobody says otherwise";
}

TEST_F(Registering, WhatContradictsEndsTheStart)
{
    RegisterSteps({kStep}, {[] {}});
    EXPECT_THROW(RegisterSteps({kOther, kStep}, {[] {}}), std::logic_error);
    RegisterSteps({kStep}, Allowed(true));
    EXPECT_THROW(RegisterSteps({kStep}, Allowed(false)), std::logic_error);
    EXPECT_TRUE(StepIsAllowed(kStep, 0));
    RegisterPage(3, [](QFrame *) {});
    EXPECT_THROW(RegisterPage(3, [](QFrame *) {}), std::logic_error);
}

TEST_F(Registering, WhatSeveralFilesTellOfATabIsPutTogether)
{
    RegisterTab(2, {.prepare = [this] { order += "prepared "; }});
    RegisterTab(2, {.leave = [this] { order += "left "; }});
    EXPECT_THROW(RegisterTab(2, {.prepare = [] {}}), std::logic_error);
    const TabRecord known = RecordOfTab(2);
    known.prepare();
    known.leave();
    EXPECT_EQ(order, "prepared left ");
    EXPECT_FALSE(known.lastWords);
    EXPECT_FALSE(RecordOfTab(1).prepare);
}
