#include "model/ratio_conditions.h"

#include "model/settings.h"
#include "model/station_settings.h"
#include "session/state.h"

namespace ombrix {
namespace {

bool IsDcFamily()
{
    return CalibTab == kTabDc;
}

}  // namespace

const std::vector<RatioRange> &RatioRanges()
{
    static const std::vector<RatioRange> dc = {{"0.2 V", "A0"}, {"2 V", "A1"}, {"20 V", "A2"}};
    static const std::vector<RatioRange> strain = {
        {"20 mV", "C0"}, {"50 mV", "C1"}, {"100 mV", "C2"}, {"250 mV", "C3"}, {"500 mV", "C4"}};
    return IsDcFamily() ? dc : strain;
}

RatioConditions StoredRatioConditions()
{
    return IsDcFamily() ? RatioConditions{DcRatioRange, DcRatioReading} : RatioConditions{StrainRange, StrainReading};
}

void SaveRatioConditions(const RatioConditions &conditions)
{
    (IsDcFamily() ? DcRatioRange : StrainRange) = conditions.range;
    (IsDcFamily() ? DcRatioReading : StrainReading) = conditions.reading;
    SaveRatios();
}

}  // namespace ombrix
