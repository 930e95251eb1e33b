// The connection diagrams: fraInputs, the wired input connector, and fraJumperBlock(0..8), the board's jumpers.
//
// Pages reach them through session/page_frame.h. Without a window they draw nothing; the cable message is given all
// the same.
#pragma once

class QWidget;

namespace ombrix {

constexpr int kJumperBlocks = 9;

/// Fills what session/page_frame.h promises of the diagrams. Once at start.
void FillDiagramHooks();

/// Makes all frames of a window inside `parent`, which has no layout yet, hidden. Each stands on a card; all cards have
/// one width, that of `parent` within limits, and what they show grows with it. Forgets the cable of the last session.
void BuildDiagrams(QWidget *parent);

}  // namespace ombrix
