#pragma once
// The twelve instruments of the soak: each with its simulator script and what one pass of that
// script leaves in the delivery folders, and the test its order files ask for.

#include <QString>

#include <vector>

namespace orbline::soak {

struct SoakInstrument {
    QString code;
    QString script;        // in tools/simulator/scripts
    QString name;          // Name of its settings section, and so of every record
    int records;           // records of the one result file a pass delivers
    bool chart;            // a pass also delivers a chart into JyusinDataPath2
    QString orderTest;     // a test of its item table; empty: it takes no order files
    bool secondOrderPath;  // takes order files from OrderPath2 as well
};

const std::vector<SoakInstrument>& SoakInstruments();

// The settings prefix of an instrument: its section is this + "MC".
QString SoakPrefix(const QString& code);

}  // namespace orbline::soak
