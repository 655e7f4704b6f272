#pragma once
// The lists of the form, filled by the load event, and the code tables of the panes, built by
// the start command.

namespace orbline {

// Port, rate, data bits, parity, stop bits, handshake, time-out, delimiter and the two pane
// modes, each on its first entry. The order of parity, stop bits and handshake is the order of
// the port's values, so a position goes to the port unchanged.
void FillLineLists();
// The thread list (a fixed "OFF"), the minimum and maximum of the automatic data (the maximum
// on its last entry) and the send conditions.
void FillConsoleLists();
void BuildCodeTables();

}  // namespace orbline
