// The operator's guide that came with the program.
#pragma once

#include <QString>

namespace ombrix {

/// Opens the guide with the desktop's reader: operator.html in the folder guide beside the program or in the installed
/// ../share/ombrix/guide, else operator.md beside the program, in its docs folder or in the docs folder beside it. A box
/// says so when it is not there or nothing opens it.
void OpenGuide(const QString &programFolder);

}  // namespace ombrix
