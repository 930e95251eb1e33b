// While navigation talks to the instruments: the choices beside it are off, the focus waits.
#pragma once

namespace ombrix {

/// Parks the focus and switches the choices of the Setup page and the board chooser off when it is made; gives the
/// choices back when it goes, whatever ended the navigation. Steps, tabs and Setup are off as long as a procedure runs
/// anyway.
class NavigationLock
{
public:
    NavigationLock();
    ~NavigationLock();
    NavigationLock(const NavigationLock &) = delete;
    NavigationLock &operator=(const NavigationLock &) = delete;
};

/// A button that goes off hands its focus to whatever comes next. From here on it waits in a quiet place instead.
void KeepFocusSafe();
/// Once navigation is back: the parked focus returns to where it was, or goes to the steps, unless the page that was
/// opened has taken it.
void GiveFocusBack();

}  // namespace ombrix
