// The two output connectors of a meter with a dual analog converter.
#pragma once

class QWidget;

namespace ombrix {

/// Makes the picture and its labels in `parent`, hidden.
QWidget *BuildDualConverter(QWidget *parent);

}  // namespace ombrix
