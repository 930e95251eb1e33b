/* The program that outlives the station by a moment: when the station dies, it puts the calibrator in standby.
 *
 * The station starts it with one end of a socket as its descriptor 3 and hands it the calibrator's open line there. As
 * long as the station lives it sleeps in one read. It is plain C without the C++ library, so that it stays small.
 *
 * What it hears, one packet each, answered with one byte when it is done:
 *   'L' with a descriptor   this is the calibrator's line now; one that it held is closed
 *   'N'                     there is no line; the one that it held is closed
 *   'G'                     goodbye: the station has said the last words itself
 * The end of the socket without a goodbye is the station's death. */
#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <termios.h>
#include <unistd.h>

#include "version.h"

enum { kSocket = 3, kPatienceS = 10 };

/* The station may have died inside a line, which the first line end closes, or inside a block for the meter, which
 * takes what follows for data: the longest has fewer than 200 bytes. So the standby is said until one stands behind
 * every block. */
static const char kStandby[] = "\nOUT 0 V, 0 Hz ; STBY ; *WAI\n";
static const char kLocal[] = "LOCAL\n";
enum { kLongestBlock = 200, kTimes = kLongestBlock / (int)(sizeof kStandby - 1) + 3 };

static const char kAbout[] =
    "ombrix-guard puts the calibrator in standby when the calibration station dies. The station starts it; there is\n"
    "nothing to start by hand. Options: --version, --help\n";

static int line = -1;

static void HoldLine(int given)
{
    if (line >= 0)
        close(line);
    line = given;
}

/* The station has made the line non-blocking, for both. */
static void Say(const char *bytes, size_t count)
{
    while (count > 0) {
        const ssize_t written = write(line, bytes, count);
        if (written > 0) {
            bytes += written;
            count -= (size_t)written;
            continue;
        }
        if (written == 0 || (errno != EAGAIN && errno != EINTR))
            return; /* the line has gone */
        struct pollfd room = {line, POLLOUT, 0};
        if (poll(&room, 1, -1) > 0 && (room.revents & (POLLERR | POLLHUP | POLLNVAL)) != 0)
            return;
    }
}

static void SpeakLastWords(void)
{
    if (line < 0)
        return;
    alarm(kPatienceS); /* a line that takes nothing keeps nobody */
    for (int times = 0; times < kTimes; ++times)
        Say(kStandby, sizeof kStandby - 1);
    Say(kLocal, sizeof kLocal - 1);
    tcdrain(line);
}

/* The packet's letter, 0 when the station has died. A descriptor that came with it goes to `given`, else -1. */
static char Hear(int *given)
{
    char letter = 0;
    struct iovec data = {&letter, 1};
    union {
        struct cmsghdr head;
        char room[CMSG_SPACE(sizeof(int))];
    } extra;
    struct msghdr message = {0};
    ssize_t got;
    do {
        memset(&extra, 0, sizeof extra);
        message.msg_iov = &data;
        message.msg_iovlen = 1;
        message.msg_control = extra.room;
        message.msg_controllen = sizeof extra.room;
        got = recvmsg(kSocket, &message, MSG_CMSG_CLOEXEC);
    } while (got < 0 && errno == EINTR);
    *given = -1;
    if (got <= 0)
        return 0;
    const struct cmsghdr *head = CMSG_FIRSTHDR(&message);
    if (head && head->cmsg_level == SOL_SOCKET && head->cmsg_type == SCM_RIGHTS)
        memcpy(given, CMSG_DATA(head), sizeof *given);
    return letter;
}

/* What a terminal sends to the station's group, and a quit that asks politely, is the station's to answer. */
static void IgnoreSignals(void)
{
    const int ignored[] = {SIGINT, SIGQUIT, SIGHUP, SIGTERM, SIGTSTP, SIGTTIN, SIGTTOU, SIGPIPE, SIGUSR1, SIGUSR2};
    for (size_t i = 0; i < sizeof ignored / sizeof *ignored; ++i)
        signal(ignored[i], SIG_IGN);
    setsid();
}

static int Tell(int where, const char *words, int result)
{
    return write(where, words, strlen(words)) < 0 ? 1 : result;
}

/* Whoever starts it by hand is told what it is. */
static int StartedByTheStation(void)
{
    int type = 0;
    socklen_t size = sizeof type;
    return getsockopt(kSocket, SOL_SOCKET, SO_TYPE, &type, &size) == 0 && type == SOCK_SEQPACKET;
}

int main(int argc, char **argv)
{
    if (argc == 2 && strcmp(argv[1], "--version") == 0)
        return Tell(STDOUT_FILENO, "ombrix-guard " OMBRIX_VERSION "\n", 0);
    if (argc == 2 && strcmp(argv[1], "--help") == 0)
        return Tell(STDOUT_FILENO, kAbout, 0);
    if (argc > 1 || !StartedByTheStation())
        return Tell(STDERR_FILENO, kAbout, 2);
    IgnoreSignals();
    syscall(SYS_close_range, kSocket + 1, ~0U, 0); /* whatever the station had open and didn't close */
    for (;;) {
        int given;
        const char letter = Hear(&given);
        if (letter == 'G')
            return 0;
        if (letter != 'L' && letter != 'N')
            break;
        HoldLine(given);
        if (send(kSocket, &letter, 1, MSG_NOSIGNAL) != 1)
            break;
    }
    SpeakLastWords();
    return 0;
}
