// The connection diagrams: fraInputs, the wired input connector, and fraJumperBlock(0..8), the board's jumpers.
//
// ShowConnectionDiagram and HideConnectionDiagram, declared in session/page_frame.h, are defined here. Without a
// window they draw nothing; the cable message is given all the same.
#pragma once

#include <QString>

class QWidget;

namespace ombrix {

constexpr int kJumperBlocks = 9;

/// Width that the column must have, in logical pixels.
constexpr int kDiagramColumnWidth = 260;

/// Makes all frames of a window inside `parent`, which has no layout yet, hidden. Forgets the cable of the last
/// session.
void BuildDiagrams(QWidget *parent);

/// Shows block 5 alone: `row` 0 UniPolar, 1 BiPolar; with a dual converter also its two output connectors.
void ShowAnalogDiagram(int row, bool dual);

/// The next AC3 range asks for its cable again.
void ForgetCable();

}  // namespace ombrix
