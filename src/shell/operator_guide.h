// The operator's guide that came with the program.
#pragma once

#include <QString>

namespace ombrix {

/// Opens operator.md, which stands beside the program, in its docs folder or in the docs folder beside it, with the
/// desktop's reader. A remark says so when it is not there or nothing opens it.
void OpenGuide(const QString &programFolder);

}  // namespace ombrix
