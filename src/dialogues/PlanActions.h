#pragma once
// What an order phase asks the loop to do. A plan decides, as a pure function of its state and
// the instrument's reply, and gives a list of actions; the loop carries them out in order and
// is the only one that touches the port, the logs and the order store.

#include "common/Logging.h"
#include "dialogues/LinkRules.h"

#include <QString>

#include <variant>
#include <vector>

namespace orbline {

// A record as a frame of the host, which also goes to the trace. Header, patient and terminator
// go out in the hexadecimal mode whatever the operator chose in the send mode list.
struct SendRecord {
    QString text;  // with its frame number in front and "@" for each CR
    FrameEnd end = FrameEnd::Etx;
    bool hexMode = false;
    bool operator==(const SendRecord&) const = default;
};

enum class Control { Enq, Eot };
struct SendControl {
    Control control;
    bool operator==(const SendControl&) const = default;
};

// A log pair: the console text, then the file text, both in the form given.
struct LogPair {
    QString console;
    QString file;
    LogForm form = LogForm::Short;
    bool operator==(const LogPair&) const = default;
};

// The dialogue's order lookup; its answer comes back to the plan before anything else is done.
struct RunLookup {
    bool operator==(const RunLookup&) const = default;
};

// A text for the trace of the transmission besides the frames.
struct TraceText {
    QString text;
    bool operator==(const TraceText&) const = default;
};

// A numbered detail line of the main log, written only when LogMeisai is "1": the text, the
// time, ":" and the value.
struct DetailLine {
    QString text;
    QString value;
    bool operator==(const DetailLine&) const = default;
};

using PlanAction = std::variant<SendRecord, SendControl, LogPair, RunLookup, TraceText, DetailLine>;
using PlanActions = std::vector<PlanAction>;

}  // namespace orbline
