// Lines from standard input, and Ctrl-C.
#ifndef HOST_CONSOLE_H
#define HOST_CONSOLE_H

#include <string>

enum class Line { read, broken, ended };

namespace console {

void open(); // from here on Ctrl-C no longer ends the process

// Waits for a line; the prompt is shown on a terminal only. `broken` when Ctrl-C was pressed before the line
// was complete: what was typed so far is dropped.
Line read(std::string &line, const char *prompt);

// The library's input handler: a line, or "ctrl_c_event" after Ctrl-C.
void input(char *buffer, int size);

// Whether Ctrl-C was pressed since this was last asked, or a line was broken off.
bool take_break();

} // namespace console

#endif
