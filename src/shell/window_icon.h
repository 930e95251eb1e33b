// The picture of the station on the desktop: a panel meter that reads zero.
#pragma once

#include <QIcon>

namespace ombrix {

QIcon WindowIcon();

}  // namespace ombrix
