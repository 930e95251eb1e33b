#include "session/kept_remarks.h"

#include "session/outlets.h"

#include <map>

namespace ombrix {
namespace {

std::map<Subject, std::string> keptRemarks;

}  // namespace

void InitKeptRemarks()
{
    keptRemarks.clear();
}

void KeepRemarkOn(Subject subject, const std::string &text)
{
    keptRemarks[subject] = text;
    std::string all;
    for (const auto &[about, remark] : keptRemarks)
        if (!remark.empty())
            all += (all.empty() ? "" : "   ") + remark;
    outlets.keepRemark(all);
}

std::string KeptRemarkOn(Subject subject)
{
    const auto kept = keptRemarks.find(subject);
    return kept == keptRemarks.end() ? "" : kept->second;
}

}  // namespace ombrix
