#pragma once
// Plays the steps of a replay against the real program: kv_orbline runs on the isolated site
// with its port on a pseudo-terminal, and this end plays the instrument.

#include "ReplayInput.h"
#include "ReplaySite.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

namespace orbline::replay {

struct RunSettings {
    QString program;  // kv_orbline
    QString code;
    QString prefix;
    QString now;  // a fixed "now" for the program's clock, or empty for the real one
    // How long the program may go on after the last piece (its edits, a silence that ends a
    // message), before the time scale.
    int settleMs = 2000;
};

struct RunOutcome {
    bool ok = false;
    QString error;
    // Where the program answered otherwise than the capture shows.
    QStringList differences;
};

// The program's device must be set to the pair's slave in the site's settings already.
RunOutcome PlaySteps(const ReplaySite& site, int masterFd,
                     const std::function<bool()>& takeOpenedMark, const std::vector<Step>& steps,
                     const RunSettings& settings);

// The time after the last piece that the code needs by default.
int DefaultSettleMs(const QString& code);

}  // namespace orbline::replay
