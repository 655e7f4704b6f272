#pragma once
// The command line: one text, every "/" removed, split on "=", each field trimmed of blanks.
// Seven fields; missing ones stay empty.

#include <QString>
#include <QStringList>

namespace orbline {

struct LaunchFields {
    QString InstrumentCode;  // field 0
    QString ShowMode;        // field 1, "0" when empty
    QString IniPrefix;       // field 2
    QString AppPath;         // field 3
    QString FixedSampleId;   // field 4
    QString Spare5;          // field 5, "0" when empty
    QString RunMarkDefault;  // field 6
};

LaunchFields ParseCommandLine(const QString& commandLine);
// On POSIX the parent's arguments are joined by one blank into the one text.
QString JoinArguments(int argc, const char* const* argv);

// The load event up to the start command: the date caption, the fields into RunContext
// (OutSerial set to 0 between fields 4 and 5), the order staging emptied, the timers off, the
// hidden character, the lists, the start line.
void RunLoadEventStart(const QString& commandLine);
// Shows the console window over the form (ShowMode 1). The window is built above this layer,
// so the program names it here at start; without it the form stays a model only.
using FormShower = void (*)();
void SetFormShower(FormShower shower);

// The whole load event: the above, then the form shown (ShowMode 1) or not, and the start
// command, which returns only when the session has ended.
void Form_Load(const QString& commandLine);

}  // namespace orbline
