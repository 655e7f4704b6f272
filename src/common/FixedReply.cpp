#include "common/FixedReply.h"

#include "common/EventYield.h"
#include "common/Form.h"
#include "common/Logging.h"
#include "common/Numbers.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "common/Text.h"
#include "serial/AwComm.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

// A token as the runtime reads "&H" + token or a decimal token into a byte: anything else, a
// value above 255 included, is a failed conversion and gives 0.
std::uint8_t TokenByte(const QString& token, bool hexadecimal) {
    if (!hexadecimal) {
        const auto number = ToInt32(token);
        return (number && *number >= 0 && *number <= 255) ? static_cast<std::uint8_t>(*number) : 0;
    }
    int value = 0;
    for (const QChar c : token) {
        const int digit = QStringView(u"0123456789ABCDEF").indexOf(c.toUpper());
        if (digit < 0) return 0;
        value = value * 16 + digit;
        if (value > 255) return 0;
    }
    return static_cast<std::uint8_t>(value);
}

QByteArray TokensToBytes(const QString& text, bool hexadecimal) {
    QString tokens = Trim(text);
    if (tokens.isEmpty()) return {};
    tokens.replace(u"\r\n"_s, u" "_s);
    while (tokens.contains(u"  "_s)) tokens.replace(u"  "_s, u" "_s);
    QByteArray bytes;
    for (const QString& token : tokens.split(u' '))
        bytes.append(static_cast<char>(TokenByte(token, hexadecimal)));
    return bytes;
}

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

QByteArray ConvertToBinary(const QString& text, qsizetype mode) {
    switch (mode) {
        case 0:
            return TokensToBytes(text, true);
        case 1:
            return TokensToBytes(text, false);
        case 2: {
            QByteArray bytes;
            const QString hidden = Form().HiddenChar;
            for (const QChar c : text)
                if (hidden.isEmpty() || c != hidden.at(0))
                    bytes.append(static_cast<char>(c.unicode() & 0xFF));
            return bytes;
        }
        default:
            return {};
    }
}

std::int32_t GetByteArrayLength(const QByteArray& bytes) {
    return static_cast<std::int32_t>(bytes.size());
}

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
