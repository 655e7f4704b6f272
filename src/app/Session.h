#pragma once
// The session: the start command opens the port and runs the instrument's dialogue until the
// session ends; the stop command closes the port and leaves the form waiting; the exit command
// and the close request end the process. Events nest inside a dialogue's yield, so each of
// them may find the dialogue below it on the stack.

#include <QList>
#include <QString>
#include <QStringList>

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

// A setting whose list was left as it was, with the entry the list kept.
struct KeptEntry {
    QString key;
    QString entry;
};
// Walks the settings' lists (port, rate, data bits, parity, stop bits, handshake, time-out)
// to the entries that the settings name; a setting that matches nothing leaves its list.
// Returns those settings, and those named in `notNumbers` (a value that is no number leaves
// its field, which may still match), in the order walked.
QList<KeptEntry> SelectLineLists(const QStringList& notNumbers = {});
// The conditions line: port, rate, parity, data bits, stop bits, handshake, time-out.
QString ConditionText();

}  // namespace orbline
