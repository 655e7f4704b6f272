#pragma once
// The instrument table: a row for each of the twelve codes, with what the shell needs to know
// of it. The dialogue of a row names the rest itself (work folder, edit, order intakes and
// lookup) in its own table.

#include <QString>
#include <QStringView>

namespace orbline {

struct Instrument {
    QStringView code;
    QStringView kind;                  // what the instrument is
    void (*dialogue)() = nullptr;      // BeginCommLoop of the code; none while it is not built
    void (*loadAtLaunch)() = nullptr;  // a master table the load event reads
    void (*loadAtStart)() = nullptr;   // a master table each start command reads
    bool readsFT01Format = false;      // the instrument's print-out layout setting
};

// The row of a code, or nullptr for a code the table does not know.
const Instrument* FindInstrument(const QString& code);

}  // namespace orbline
