// A box that shows a text, waits for the user, and returns the button that was pressed.
#pragma once

namespace orv {

// The look of a box: one set of buttons, one icon and the task-modal bit, combined by bitwise OR. Flags and answers
// have the numbers that are customary for message boxes on desktops.
enum MessageBoxFlags : unsigned {
    MESSAGE_BOX_OK = 0x0,
    MESSAGE_BOX_OK_CANCEL = 0x1,
    MESSAGE_BOX_YES_NO = 0x4,
    MESSAGE_BOX_STOP = 0x10,
    MESSAGE_BOX_INFORMATION = 0x40,
    MESSAGE_BOX_TASK_MODAL = 0x2000, // no effect on a terminal, where every question blocks its caller
};

enum MessageBoxAnswer : int {
    MESSAGE_BOX_ANSWER_OK = 1,
    MESSAGE_BOX_ANSWER_CANCEL = 2,
    MESSAGE_BOX_ANSWER_YES = 6,
    MESSAGE_BOX_ANSWER_NO = 7,
};

// Shows the box and returns the number of the pressed button.
int showMessageBox(const char *text, const char *caption, unsigned flags);

// The function that showMessageBox calls; never null. Tests and programs with a box of their own replace it.
//
// Initially it is the box on the controlling terminal. That box writes caption, text and buttons, and reads lines until
// one names a button: by its letter or its whole name, in either case. At the end of the input it takes the first
// button. If the process has no terminal, it writes nothing and takes the first button.
extern int (*messageBoxFunction)(const char *text, const char *caption, unsigned flags);

} // namespace orv
