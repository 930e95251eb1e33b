#include "platform/line_guard.h"

#ifdef _WIN32

namespace ombrix {

// Not built there: a program that is ended leaves the output as it stands.
bool StartGuard(const std::string &)
{
    return false;
}

void GuardLine(int) {}

void EndGuard() {}

bool GuardStands()
{
    return false;
}

int GuardSocket()
{
    return -1;
}

void RenewGuard() {}

void UseGuardNews(std::function<void(bool stands)>) {}

}  // namespace ombrix

#else

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace ombrix {
namespace {

constexpr int kGuardsEnd = 3;         // its descriptor of the socket
constexpr int kAnswerMs = 500;        // it does nothing else
constexpr int kFirstAnswerMs = 3000;  // its program may have to come from a slow disk first
constexpr int kEndMs = 500;
constexpr int kReplacements = 10;  // one after the other: what ends each of them would have them started without end

std::string program;
int socketToGuard = -1;
int guardedLine = -1;
pid_t guard = -1;
int replacements = 0;
std::function<void(bool stands)> guardNews;

// One that only was too slow to answer must not take the end of its socket for the station's death.
void ForgetGuard()
{
    if (guard > 0) {
        kill(guard, SIGKILL);
        waitpid(guard, nullptr, 0);
    }
    guard = -1;
    if (socketToGuard >= 0)
        close(socketToGuard);
    socketToGuard = -1;
}

bool Spawn(int guardsEnd)
{
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        posix_spawn_file_actions_addopen(&files, standard, "/dev/null", O_RDWR, 0);
    posix_spawn_file_actions_adddup2(&files, guardsEnd, kGuardsEnd);
    std::array<char *, 2> arguments = {program.data(), nullptr};
    const int error = posix_spawn(&guard, program.c_str(), &files, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&files);
    if (error != 0)
        guard = -1;
    return error == 0;
}

bool Start()
{
    ForgetGuard();
    std::array<int, 2> ends{};
    if (program.empty() || socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0)
        return false;
    // dup2 onto the same number would leave it to be closed at the start of the program.
    const int guardsEnd = fcntl(ends[1], F_DUPFD_CLOEXEC, kGuardsEnd + 1);
    close(ends[1]);
    socketToGuard = ends[0];
    const bool started = guardsEnd >= 0 && Spawn(guardsEnd);
    if (guardsEnd >= 0)
        close(guardsEnd);
    if (!started)
        ForgetGuard();
    return started;
}

bool Send(char letter, int handle)
{
    iovec data = {&letter, 1};
    msghdr message{};
    message.msg_iov = &data;
    message.msg_iovlen = 1;
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> extra{};
    if (handle >= 0) {
        message.msg_control = extra.data();
        message.msg_controllen = extra.size();
        cmsghdr *head = CMSG_FIRSTHDR(&message);
        head->cmsg_level = SOL_SOCKET;
        head->cmsg_type = SCM_RIGHTS;
        head->cmsg_len = CMSG_LEN(sizeof(int));
        std::memcpy(CMSG_DATA(head), &handle, sizeof handle);
    }
    return sendmsg(socketToGuard, &message, MSG_NOSIGNAL) == 1;
}

// It has done what it was told last.
bool HasAnswered(int withinMs)
{
    pollfd answer = {socketToGuard, POLLIN, 0};
    char letter = 0;
    int ready = -1;
    do {
        ready = poll(&answer, 1, withinMs);
    } while (ready < 0 && errno == EINTR);
    return ready == 1 && recv(socketToGuard, &letter, 1, MSG_DONTWAIT) == 1;
}

bool Tell(int handle, int withinMs)
{
    return socketToGuard >= 0 && Send(handle >= 0 ? 'L' : 'N', handle) && HasAnswered(withinMs);
}

// A new one that holds the line; none at all when it doesn't answer.
bool StartWithLine()
{
    if (Start() && Tell(guardedLine, kFirstAnswerMs))
        return true;
    ForgetGuard();
    return false;
}

void Replace()
{
    if (++replacements > kReplacements)
        program.clear();
    const bool stands = StartWithLine();
    if (guardNews)
        guardNews(stands);
}

}  // namespace

bool StartGuard(const std::string &path)
{
    program = path;
    guardedLine = -1;
    replacements = 0;
    return StartWithLine();
}

void GuardLine(int handle)
{
    guardedLine = handle;
    if (program.empty())
        return;
    if (Tell(handle, kAnswerMs))
        replacements = 0;
    else
        Replace();
}

void RenewGuard()
{
    char letter = 0;
    // Its end of the socket goes a moment before its process can be waited for.
    if (socketToGuard >= 0 && recv(socketToGuard, &letter, 1, MSG_PEEK | MSG_DONTWAIT) == 0)
        Replace();
}

int GuardSocket()
{
    return socketToGuard;
}

void EndGuard()
{
    program.clear();
    if (socketToGuard < 0)
        return;
    Send('G', -1);
    pollfd end = {socketToGuard, POLLIN, 0};
    if (poll(&end, 1, kEndMs) == 1 && guard > 0 && (end.revents & POLLHUP) != 0) {
        waitpid(guard, nullptr, 0);
        guard = -1;
    }
    ForgetGuard();
}

bool GuardStands()
{
    if (guard > 0 && waitpid(guard, nullptr, WNOHANG) != 0)
        guard = -1;
    return socketToGuard >= 0 && guard > 0;
}

void UseGuardNews(std::function<void(bool stands)> news)
{
    guardNews = std::move(news);
}

}  // namespace ombrix

#endif
