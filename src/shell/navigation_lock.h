// Navigation while it talks to the instruments: steps, tabs, Setup and the choices of the Setup page are off.
#pragma once

#include <QPointer>
#include <QWidget>

namespace ombrix {

/// Locks when it is made. When it goes, whatever ended the navigation, it gives everything back as far as a link is
/// established - unless the page that was opened has set the steps itself: then the page's word stands. The focus
/// returns to where it was, or goes to the steps, unless the page has taken it.
class NavigationLock
{
public:
    NavigationLock();
    ~NavigationLock();
    NavigationLock(const NavigationLock &) = delete;
    NavigationLock &operator=(const NavigationLock &) = delete;

    static bool Stands();
    /// Told by EnableSteps.
    static void PageHasSpoken();

private:
    int m_exceptions;
    QPointer<QWidget> m_focus;
};

}  // namespace ombrix
