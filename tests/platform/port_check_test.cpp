#include "platform/port_check.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <pty.h>
#include <string>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace ombrix;
using testing::HasSubstr;
using testing::Not;

namespace {

// A pseudo-terminal in the place of a serial port.
class PortCheck : public testing::Test
{
protected:
    PortCheck() { openpty(&m_master, &m_slave, m_name.data(), nullptr, nullptr); }
    ~PortCheck() override
    {
        close(m_master);
        close(m_slave);
    }

    std::string Device() const { return m_name.data(); }

    // What PortTrouble says while another process has the device open. One that serves it holds the maker of such
    // terminals as well.
    std::string TroubleBeside(bool serves) const
    {
        std::array<int, 2> ready{};
        if (pipe(ready.data()) != 0)
            return "no pipe";
        const pid_t other = fork();
        if (other == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            if (!serves)
                close(m_master);
            const char byte = 0;
            [[maybe_unused]] const auto told = write(ready[1], &byte, 1);
            pause();
            _exit(0);
        }
        char byte = 0;
        [[maybe_unused]] const auto heard = read(ready[0], &byte, 1);
        const std::string trouble = PortTrouble(Device());
        kill(other, SIGKILL);
        waitpid(other, nullptr, 0);
        close(ready[0]);
        close(ready[1]);
        return trouble;
    }

    // What it says to a user who doesn't own the device, nor is in its group, at a mode.
    std::string TroubleAt(mode_t mode) const
    {
        chmod(m_name.data(), mode);
        std::array<int, 2> answer{};
        if (pipe(answer.data()) != 0)
            return "no pipe";
        const pid_t other = fork();
        if (other == 0) {
            if (getuid() == 0 && (setresgid(65534, 65534, 0) != 0 || setresuid(65534, 65534, 0) != 0))
                _exit(1);
            const std::string trouble = PortTrouble(Device());
            [[maybe_unused]] const auto told = write(answer[1], trouble.data(), trouble.size());
            _exit(0);
        }
        close(answer[1]);
        waitpid(other, nullptr, 0);
        std::array<char, 1000> text{};
        const ssize_t size = read(answer[0], text.data(), text.size());
        close(answer[0]);
        return {text.data(), static_cast<std::size_t>(size > 0 ? size : 0)};
    }

private:
    int m_master = -1;
    int m_slave = -1;
    std::array<char, 256> m_name{};
};

}  // namespace

TEST_F(PortCheck, FindsNothingOnAPortThatThisProgramHoldsItself)
{
    EXPECT_EQ(PortTrouble(Device()), "");
}

TEST_F(PortCheck, NamesAnotherProgramThatHoldsThePort)
{
    EXPECT_THAT(TroubleBeside(false), testing::MatchesRegex("In use by .+: end that program\\."));
}

TEST_F(PortCheck, BlamesNoProgramThatServesTheFarEndOfThePort)
{
    EXPECT_EQ(TroubleBeside(true), "");
}

TEST_F(PortCheck, NamesTheGroupWhereItHasTheRight)
{
    const std::string trouble = TroubleAt(0060);
    EXPECT_THAT(trouble, HasSubstr("Closed to this user: join group "));
    EXPECT_THAT(trouble, HasSubstr("sudo usermod -aG "));
}

TEST_F(PortCheck, TellsTheModeWhereTheGroupWouldNotHelp)
{
    for (const auto &[mode, text] : {std::pair{0000, "---------"}, {0040, "---r-----"}}) {
        const std::string trouble = TroubleAt(static_cast<mode_t>(mode));
        EXPECT_THAT(trouble, HasSubstr(std::string("its mode is ") + text));
        EXPECT_THAT(trouble, HasSubstr("chmod g+rw " + Device()));
        EXPECT_THAT(trouble, Not(HasSubstr("usermod")));
    }
}

TEST_F(PortCheck, TellsWhatIsMissingAndWhatIsNoSerialLine)
{
    EXPECT_THAT(PortTrouble(""), HasSubstr("No device is set"));
    EXPECT_THAT(PortTrouble("/nowhere/one"), HasSubstr("Missing"));
    EXPECT_THAT(PortTrouble("/etc/passwd"), HasSubstr("No serial line"));
}
