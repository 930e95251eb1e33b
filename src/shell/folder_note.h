// The line on the Setup page that tells where the station's settings and files are, unless they lie beside the program.
#pragma once

#include "platform/folders.h"

class QLabel;
class QWidget;

namespace ombrix {

/// The folder that the station works in, told once before the window is built.
void TellStationFolder(const StationFolder &folder);
/// Makes the line inside `parent`. It is there for a folder that isn't the program's own, and when the folder is not this
/// station's to write.
QLabel *BuildFolderNote(QWidget *parent);
/// A remark on a first start, which is told whether settings were there: where they will be.
void RemarkOnFolder(bool firstStart);

}  // namespace ombrix
