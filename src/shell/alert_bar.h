// The alert: what an operator must see before anything else, over the whole width of the window, on every page.
#pragma once

#include <string>

class QWidget;

namespace ombrix {

/// Makes shpAlert with lblAlert inside `parent` and returns it, hidden.
QWidget *BuildAlertBar(QWidget *parent);

/// Stands until the next one; "" takes it away.
void ShowAlert(const std::string &text);

}  // namespace ombrix
