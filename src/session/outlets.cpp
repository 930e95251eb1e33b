#include "session/outlets.h"

namespace ombrix {

Outlets outlets;

namespace {

const char *waitText = "";

}  // namespace

WaitNote::WaitNote(const char *text) : m_before(waitText)
{
    waitText = text;
    outlets.showWait(waitText);
}

WaitNote::~WaitNote()
{
    waitText = m_before;
    outlets.showWait(waitText);
}

}  // namespace ombrix
