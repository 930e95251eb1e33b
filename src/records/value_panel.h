// The value panel, fraNVMemVals: what the image of a meter's setup says, one label for each setting.
//
// Pages reach it through session/page_frame.h. There is one; it moves to the page that asks for it.
#pragma once

class QWidget;

namespace ombrix {

/// Fills what session/page_frame.h promises of the panel. Once at start.
void FillValuePanelHooks();

/// Makes the panel of a window, hidden.
void BuildValuePanel(QWidget *window);

}  // namespace ombrix
