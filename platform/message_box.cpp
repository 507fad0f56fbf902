// The message box on the controlling terminal.
#include "message_box.h"

#include <cstddef>

#if defined(__unix__) || defined(__APPLE__)
#define ORV_HAS_TERMINAL 1
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>
#endif

namespace orv {
namespace {

// The user types the name or its first letter.
struct Button {
    const char *name;
    int answer;
};

struct Buttons {
    const Button *first;
    std::size_t count;
};

Buttons buttonsOf(unsigned flags)
{
    static constexpr Button okCancel[] = {{"OK", MESSAGE_BOX_ANSWER_OK}, {"Cancel", MESSAGE_BOX_ANSWER_CANCEL}};
    static constexpr Button yesNo[] = {{"Yes", MESSAGE_BOX_ANSWER_YES}, {"No", MESSAGE_BOX_ANSWER_NO}};
    switch (flags & 0xFu) {
    case MESSAGE_BOX_OK_CANCEL:
        return {okCancel, 2};
    case MESSAGE_BOX_YES_NO:
        return {yesNo, 2};
    default:
        return {okCancel, 1};
    }
}

#if defined(ORV_HAS_TERMINAL)

// isspace and tolower depend on the program's locale, hence these two.
char lowered(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

bool namesButton(const char *line, std::size_t length, const char *name)
{
    std::size_t same = 0;
    while (same < length && name[same] != '\0' && lowered(line[same]) == lowered(name[same]))
        ++same;
    return same == length && (length == 1 || name[same] == '\0');
}

// Null if the line names no button.
const Button *buttonNamed(const char *line, std::size_t length, Buttons buttons)
{
    while (length > 0 && isBlank(line[0]))
        ++line, --length;
    while (length > 0 && isBlank(line[length - 1]))
        --length;
    for (std::size_t i = 0; i < buttons.count; ++i)
        if (namesButton(line, length, buttons.first[i].name))
            return &buttons.first[i];
    return nullptr;
}

// Reads a line. The length includes bytes that did not fit the buffer. False at the end of the input. A carriage return
// ends a line too, because a terminal in raw mode, as full-screen programs set it, sends nothing else.
bool readLine(int terminal, char *line, std::size_t capacity, std::size_t &length)
{
    length = 0;
    for (;;) {
        char c;
        const ssize_t got = read(terminal, &c, 1);
        if (got < 0 && errno == EINTR)
            continue;
        if (got != 1)
            return false;
        if (c == '\n' || c == '\r')
            return true;
        if (length < capacity)
            line[length] = c;
        ++length;
    }
}

// False if the terminal is gone.
bool writeQuestion(int terminal, const char *text, const char *caption, unsigned flags, Buttons buttons)
{
    const char *icon = (flags & MESSAGE_BOX_STOP) != 0 ? "[!] " : (flags & MESSAGE_BOX_INFORMATION) != 0 ? "[i] " : "";
    bool written = dprintf(terminal, "\n%s%s\n\n%s\n\n", icon, caption, text) >= 0;
    for (std::size_t i = 0; i < buttons.count; ++i) {
        const char *name = buttons.first[i].name;
        written = written && dprintf(terminal, "(%c)%s ", name[0], name + 1) >= 0;
    }
    return written && dprintf(terminal, "> ") >= 0;
}

int askOn(int terminal, const char *text, const char *caption, unsigned flags, Buttons buttons)
{
    char line[64];
    std::size_t length = 0;
    while (writeQuestion(terminal, text, caption, flags, buttons) && readLine(terminal, line, sizeof line, length)) {
        const Button *pressed = length <= sizeof line ? buttonNamed(line, length, buttons) : nullptr;
        if (pressed != nullptr)
            return pressed->answer;
    }
    return buttons.first->answer;
}

int showOnTerminal(const char *text, const char *caption, unsigned flags)
{
    const Buttons buttons = buttonsOf(flags);
    // Not the standard streams: they may be redirected, or contain input of the application.
    const int terminal = open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (terminal < 0)
        return buttons.first->answer;
    const int answer = askOn(terminal, text, caption, flags, buttons);
    close(terminal);
    return answer;
}

#else

int showOnTerminal(const char *, const char *, unsigned flags)
{
    return buttonsOf(flags).first->answer;
}

#endif

} // namespace

int (*messageBoxFunction)(const char *text, const char *caption, unsigned flags) = showOnTerminal;

int showMessageBox(const char *text, const char *caption, unsigned flags)
{
    return messageBoxFunction(text, caption, flags);
}

} // namespace orv
