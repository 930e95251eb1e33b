#include "session/kept_remarks.h"

#include "session/outlets.h"

#include <gtest/gtest.h>

using namespace ombrix;

TEST(KeptRemarks, OfSeveralSubjectsStandBesideEachOtherUntilTheyAreTakenAway)
{
    std::string shown;
    outlets = Outlets();
    outlets.keepRemark = [&shown](const std::string &text) { shown = text; };
    KeepRemarkOn(Subject::Settings, "");
    KeepRemarkOn(Subject::Board, "working as TC");
    EXPECT_EQ(shown, "working as TC");
    KeepRemarkOn(Subject::Settings, "not saved");
    EXPECT_EQ(shown, "not saved   working as TC");
    KeepRemarkOn(Subject::Board, "working as RTD");
    EXPECT_EQ(shown, "not saved   working as RTD");
    KeepRemarkOn(Subject::Settings, "");
    EXPECT_EQ(shown, "working as RTD");
    KeepRemarkOn(Subject::Guard, "no guard");
    EXPECT_EQ(shown, "no guard   working as RTD") << "what an output hangs on is never clipped";
    KeepRemarkOn(Subject::Guard, "");
    KeepRemarkOn(Subject::Board, "");
    EXPECT_EQ(shown, "");
    outlets = Outlets();
}
