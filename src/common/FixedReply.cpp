#include "common/FixedReply.h"

#include "common/EventYield.h"
#include "common/Form.h"
#include "common/Logging.h"
#include "common/Numbers.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "serial/AwComm.h"

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

// The hexadecimal text of a fixed reply; a prepared frame keeps SendBytes as it is.
QByteArray FixedReplyText(FixedReply reply) {
    switch (reply) {
        case FixedReply::FrameAccepted:
            return "02 06 30 43 41 03";
        case FixedReply::FrameRefused:
            return "02 15 30 42 42 03";
        case FixedReply::FrameD0nsd:
            return "02 44 30 4E 53 44 41 37 03";
        case FixedReply::Ack:
            return "06";
        case FixedReply::Nak:
            return "15";
        case FixedReply::Enq:
            return "05";
        case FixedReply::Eot:
            return "04";
        case FixedReply::Positive:
            return "02 3E 03";
        case FixedReply::Negative:
            return "02 3F 03";
        case FixedReply::AckCr:
            return "06 0D";
        case FixedReply::NakCr:
            return "15 0D";
        case FixedReply::Prepared:
            break;
    }
    return Ctx().SendBytes;
}

}  // namespace

void SendFixedReply(FixedReply reply) {
    try {
        RunContext& c = Ctx();
        Form_TesvaneMain& f = Form();
        c.SendBytes = FixedReplyText(reply);
        const QByteArray bytes =
            ConvertToBinary(QString::fromLatin1(c.SendBytes), f.comboModeW.position);
        f.sendBytes.bytes = bytes;
        f.sendBytes.count = GetByteArrayLength(bytes);
        // A false write is no error here and is not looked at.
        f.comm().WriteBinary(Bytes(bytes.begin(), bytes.end()));
        f.sendBytes.bytes.clear();
        YieldToEvents();
        f.sendBytes.erase();
        f.textDataW.clear();
        ShowByteCounts();
    } catch (const RuntimeError& error) {
        ErrorExit(error.description());
    }
}

void ShowLineStates() {
    Form_TesvaneMain& f = Form();
    if (!f.Comm) return;
    f.labelCts = f.Comm->Cts() ? u"CTS- ON"_s : u"CTS-OFF"_s;
    f.labelDsr = f.Comm->Dsr() ? u"DSR- ON"_s : u"DSR-OFF"_s;
}

void ShowByteCounts() {
    Form_TesvaneMain& f = Form();
    f.labelBytesW = FormatNumber(QString::number(f.sendBytes.count), u"#,##0"_s);
    f.labelBytesR = FormatNumber(QString::number(f.receiveBytes.count), u"#,##0"_s);
}

}  // namespace orbline
