#pragma once
// The session: the start command opens the port and runs the instrument's dialogue until the
// session ends; the stop command closes the port and leaves the form waiting; the exit command
// and the close request end the process. Events nest inside a dialogue's yield, so each of
// them may find the dialogue below it on the stack.

#include <QString>

#include <cstdint>

namespace orbline {

// Start command: settings into RunContext and the lists, the port opened, the dialogue run.
// Returns when the session has ended.
void Cmd_Open();
// Opens (with all that belongs to it) or closes the port. A failed open ends the process.
void SetConnected(bool connect);
// Stop command.
void Cmd_Kaijyo();
// Exit command; does not return.
[[noreturn]] void Cmd_End();
// Close request; always ends the process, a connected link closed cleanly on the way.
[[noreturn]] void Form_QueryUnload(std::int16_t& cancel);

// Walks the settings' lists (port, rate, data bits, parity, stop bits, handshake, time-out)
// to the entries that the settings name; a setting that matches nothing leaves its list.
void SelectLineLists();
// The conditions line: port, rate, parity, data bits, stop bits, handshake, time-out.
QString ConditionText();

}  // namespace orbline
