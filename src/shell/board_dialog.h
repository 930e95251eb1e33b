// dlgSCType: the operator says which board, and where it isn't known which kind of meter, stands before him.
#pragma once

namespace ombrix {

/// Shows the dialog and returns when it is answered; the answer is then written into the meter. ShowSCDialogFull says
/// how much it asks.
void AskBoard();

}  // namespace ombrix
