#include "guard_sleep.h"

#include "platform/line_guard.h"
#include "program.h"

#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <stdexcept>
#include <thread>
#include <unistd.h>

namespace ombrix::benchmarks {
namespace {

using namespace std::chrono_literals;

constexpr auto kSettle = 3s;  // until it has gone back to sleep

// A pseudo-terminal; the near end is the line.
class Line
{
public:
    Line() : m_far(posix_openpt(O_RDWR | O_NOCTTY))
    {
        if (m_far >= 0 && grantpt(m_far) == 0 && unlockpt(m_far) == 0)
            m_near = open(ptsname(m_far), O_RDWR | O_NOCTTY);
        if (m_near < 0)
            throw std::runtime_error("no pseudo-terminal");
    }
    ~Line()
    {
        close(m_near);
        close(m_far);
    }
    Line(const Line &) = delete;
    Line &operator=(const Line &) = delete;
    int Near() const { return m_near; }

private:
    int m_far;
    int m_near = -1;
};

}  // namespace

double WakeUpsOfGuard(int seconds)
{
    const Line line;
    if (!StartGuard(OMBRIX_GUARD))
        throw std::runtime_error("the guard does not start");
    GuardLine(line.Near());
    std::this_thread::sleep_for(kSettle);
    const pid_t guard = ChildOf(getpid(), "ombrix-guard");
    const double wakeUps = SleepsASecondOf(guard, seconds);
    const bool stood = GuardStands();
    EndGuard();
    if (!stood)
        throw std::runtime_error("the guard has ended");
    return wakeUps;
}

}  // namespace ombrix::benchmarks
