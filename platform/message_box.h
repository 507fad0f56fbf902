// A box that shows a text, waits for the user, and tells which button was pressed.
#pragma once

namespace orv {

// What a box looks like, combined by bitwise OR of one set of buttons, one icon and the task-modal bit. The numbers of
// flags and answers are those that desktop programs have long used for them.
enum MessageBoxFlags : unsigned {
    MESSAGE_BOX_OK = 0x0,
    MESSAGE_BOX_OK_CANCEL = 0x1,
    MESSAGE_BOX_YES_NO = 0x4,
    MESSAGE_BOX_STOP = 0x10,
    MESSAGE_BOX_INFORMATION = 0x40,
    MESSAGE_BOX_TASK_MODAL = 0x2000, // no meaning on a terminal, where every question holds up its caller
};

enum MessageBoxAnswer : int {
    MESSAGE_BOX_ANSWER_OK = 1,
    MESSAGE_BOX_ANSWER_CANCEL = 2,
    MESSAGE_BOX_ANSWER_YES = 6,
    MESSAGE_BOX_ANSWER_NO = 7,
};

// Shows the box and returns the number of the pressed button.
int showMessageBox(const char *text, const char *caption, unsigned flags);

// What showMessageBox calls. Initially the box on the controlling terminal: it writes caption, text and buttons, and
// reads lines until one names a button, by its letter or its whole name in either case. The first button is taken at
// the end of the input, and, with nothing written, where the process has no terminal. Tests, and programs with a box of
// their own, put another function here; it is never null.
extern int (*messageBoxFunction)(const char *text, const char *caption, unsigned flags);

} // namespace orv
