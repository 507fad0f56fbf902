// The message box: its conversation on a real terminal, and what it does without one.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "message_box.h"

#if defined(__linux__)

#include <cerrno>
#include <csignal>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

namespace {

constexpr unsigned okOnly = 0x2040, okCancel = 0x2011, yesNo = 0x2014;
const char *const text = "Something failed\n(status: -5)";
const char *const caption = "ORV 1.0";

int waitFor(pid_t child)
{
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string readWhole(int from)
{
    std::string whole;
    char piece[512];
    for (ssize_t got; (got = read(from, piece, sizeof piece)) > 0;)
        whole.append(piece, static_cast<std::size_t>(got));
    return whole;
}

// Reads one question off the terminal; what came so far when it ends or is silent for ten seconds.
std::string readQuestion(int terminal)
{
    std::string screen;
    while (screen.find("> ") == std::string::npos) {
        pollfd ready = {terminal, POLLIN, 0};
        char piece[512];
        if (poll(&ready, 1, 10'000) != 1)
            break;
        const ssize_t got = read(terminal, piece, sizeof piece);
        if (got <= 0)
            break;
        screen.append(piece, static_cast<std::size_t>(got));
    }
    return screen;
}

// In a process of its own with closed standard streams: the box must find the terminal itself.
[[noreturn]] void showAndLeave(unsigned flags, bool raw)
{
    termios settings;
    tcgetattr(STDIN_FILENO, &settings);
    if (raw)
        cfmakeraw(&settings);
    settings.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    settings.c_oflag &= ~static_cast<tcflag_t>(OPOST);
    tcsetattr(STDIN_FILENO, TCSANOW, &settings);
    std::signal(SIGHUP, SIG_IGN);
    if (dup(STDIN_FILENO) < 0) // with no opening left, the terminal would count as hung up before the box opens it
        _exit(99);
    for (int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        close(stream);
    _exit(orv::showMessageBox(text, caption, flags));
}

// Types a line after each question and hangs up after the last. The box must ask that question before each line and
// must have gone after the last one. Gives the answer.
int converse(unsigned flags, const std::vector<std::string> &lines, const std::string &question, bool raw = false)
{
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0)
        showAndLeave(flags, raw);
    if (child < 0) {
        ADD_FAILURE() << "no terminal to be had";
        return -1;
    }
    for (const std::string &line : lines) {
        EXPECT_EQ(readQuestion(terminal), question);
        EXPECT_EQ(write(terminal, line.data(), line.size()), static_cast<ssize_t>(line.size()));
    }
    EXPECT_EQ(readQuestion(terminal), lines.empty() ? question : "");
    close(terminal);
    return waitFor(child);
}

TEST(MessageBoxOnATerminal, AsksUntilTheAnswerNamesAButton)
{
    const std::string report = "ORV 1.0\n\nSomething failed\n(status: -5)\n\n";
    const std::string longLine = std::string(300, 'n') + "\n";
    const std::string paddedPastTheBuffer = "n" + std::string(100, ' ') + "x\n";
    const struct {
        unsigned flags;
        std::string question;
        std::vector<std::vector<std::string>> conversations;
        int answer;
    } cases[] = {
        {0, "\n" + report + "(O)K > ", {{"o\n"}}, 1},
        {okOnly, "\n[i] " + report + "(O)K > ", {{"o\n"}, {"OK\n"}, {"c\n", "o\n"}, {"\x04"}, {}}, 1},
        {okCancel, "\n[!] " + report + "(O)K (C)ancel > ", {{"o\n"}, {"\x04"}, {"x\n", "\x04"}, {}}, 1},
        {okCancel, "\n[!] " + report + "(O)K (C)ancel > ", {{"c\n"}, {"CANCEL\n"}}, 2},
        {yesNo, "\n[!] " + report + "(Y)es (N)o > ", {{"y\n"}, {"Yes\n"}, {"\x04"}, {}}, 6},
        {yesNo,
         "\n[!] " + report + "(Y)es (N)o > ",
         {{" \tN  \n"}, {"no\n"}, {"\n", "?\n", "c\n", "nope\n", "yesno\n", longLine, paddedPastTheBuffer, "n\n"}},
         7},
    };
    for (const auto &c : cases)
        for (const auto &lines : c.conversations) {
            SCOPED_TRACE(testing::PrintToString(lines));
            EXPECT_EQ(converse(c.flags, lines, c.question), c.answer);
        }
}

TEST(MessageBoxOnATerminal, TakesACarriageReturnInRawMode)
{
    const std::string question = "\n[!] ORV 1.0\n\nSomething failed\n(status: -5)\n\n(Y)es (N)o > ";
    EXPECT_EQ(converse(yesNo, {"x\r", "n\r"}, question, true), 7);
}

TEST(MessageBoxWithoutATerminal, TakesTheFirstButtonInSilence)
{
    const struct {
        unsigned flags;
        int answer;
    } cases[] = {{okOnly, 1}, {okCancel, 1}, {yesNo, 6}};
    for (const auto &c : cases) {
        int streams[2];
        ASSERT_EQ(pipe(streams), 0);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            setsid(); // leaves the controlling terminal, should the tests have one
            for (int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
                dup2(streams[1], stream);
            close(streams[0]);
            close(streams[1]);
            _exit(orv::showMessageBox(text, caption, c.flags));
        }
        close(streams[1]);
        EXPECT_EQ(readWhole(streams[0]), "");
        close(streams[0]);
        EXPECT_EQ(waitFor(child), c.answer);
    }
}

} // namespace

#endif
