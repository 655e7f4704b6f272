// From the instrument's last byte to the delivered result file: 50 result messages of one
// instrument through the running process over a pseudo-terminal. The host waits after the
// first byte of a read for the rest of it (100 ms for 0980, 10 ms for 1660, a whole second for
// the chemistry analyser 2140), so that much latency is the protocol's own.
//
// Aim: the median and the worst within 30 ms of that wait.
//
// Run: build/bench/bench_result_latency [messages] [0980|1660|2140]

#include "common/AnsiCodec.h"

#include "ByteNotation.h"
#include "PtyPair.h"
#include "SimLine.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using orbline::sim::Bytes;

namespace {

constexpr double kAimAboveWaitMs = 30;

Bytes Parsed(const std::string& notation) {
    std::string error;
    return orbline::sim::ParseBytes(notation, error).value_or(Bytes{});
}

Bytes Frame(const std::string& text) {
    return Parsed("<STX>" + text + "<ETX><SUM><CR><LF>");
}

std::vector<Bytes> Message0980(int sample) {
    return {Parsed("<ENQ>"),
            Frame("1H|\\^&|||HLC-723G11^01.02|||||||||1.0<CR>"),
            Frame("2P|1<CR>O|1|" + std::to_string(sample) + "|1<CR>"),
            Frame("3R|1|^^^HbA1cValue|5.60|%|||||||202504160925<CR>R|2|^^^NGSP|5.6|%<CR>"),
            Frame("4L|1|N<CR>"),
            Parsed("<EOT>")};
}

std::vector<Bytes> Message1660(int sample) {
    return {
        Parsed("<ENQ>"),
        Frame("1H|\\^&|||c311^1|||||host|RSUPL^REAL|P|1<CR>P|1<CR>O|1|" + std::to_string(sample) +
              "|1^^1^^004|R1|^^^685/|R||||||N||^^||SC|||labo|^^^^|||20240203132011|||F<CR>"),
        Frame("2R|1|^^^685/|22.4|U/l||A||F|||||P1<CR>R|2|^^^687/|15.0|U/l||N||F|||||P1<CR>"),
        Frame("3L|1|N<CR>"), Parsed("<EOT>")};
}

// One frame, the last of its message: one item group.
std::vector<Bytes> Message2140(int sample) {
    const std::string id = std::to_string(sample);
    return {Parsed("<STX>:0100001N001 " + id + std::string(13 - id.size(), ' ') +
                   "000000416250925000000  1  1   6.5 <ETX>")};
}

struct Instrument {
    const char* code;
    const char* name;
    double readWaitMs;
    std::vector<Bytes> (*message)(int sample);
};

constexpr Instrument kInstruments[] = {
    {"0980", "HLC", 100, &Message0980},
    {"1660", "COBAS", 10, &Message1660},
    {"2140", "BM", 1000, &Message2140},
};

qsizetype Deliveries(const QString& folder) {
    return QDir(folder).entryList(QDir::Files).size();
}

bool WaitFor(const std::function<bool()>& condition, int ms) {
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > ms) return false;
        QThread::usleep(200);
    }
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    const int messages = argc > 1 ? std::max(1, std::atoi(argv[1])) : 50;
    const std::string code = argc > 2 ? argv[2] : "0980";
    const auto known = std::find_if(std::begin(kInstruments), std::end(kInstruments),
                                    [&](const Instrument& i) { return i.code == code; });
    if (known == std::end(kInstruments)) {
        std::fprintf(stderr, "instrument %s has no message here (0980, 1660, 2140)\n",
                     code.c_str());
        return 2;
    }
    const Instrument& instrument = *known;
    const QString name = QString::fromLatin1(instrument.name);
    orbline::sim::PtyPair pty;
    orbline::sim::SimLine line(pty.masterFd());
    QTemporaryDir dir;
    QDir(dir.path()).mkpath(u"wk"_s);
    QDir(dir.path()).mkpath(u"data"_s);
    const QString site = QString(dir.path()).replace(u'/', u'\\');
    QFile ini(dir.path() + u"/KV_Orbline.ini"_s);
    if (!ini.open(QIODevice::WriteOnly)) return 2;
    ini.write(orbline::EncodeAnsi(u"[User]\r\nJyusinWKPath="_s + site +
                                  u"\\wk\r\nJyusinDataPath="_s + site +
                                  u"\\data\r\n[TNMC]\r\nName="_s + name +
                                  u"\r\nPort=1\r\nBaudRate=9600\r\nDataBits=8\r\nParity=n\r\n"_s
                                  u"StopBits=1\r\nHandshake=N\r\nTimeOut=1000\r\nDevice="_s +
                                  QString::fromStdString(pty.slavePath()) + u"\r\n"_s));
    ini.close();

    QProcess link;
    link.setProcessChannelMode(QProcess::ForwardedChannels);
    link.start(QString::fromLocal8Bit(KV_ORBLINE_EXE),
               {QString::fromLatin1(instrument.code) + u"=0=TN="_s + site});
    const QString data = dir.path() + u"/data"_s;
    if (!WaitFor([&] { return pty.takeOpenedMark(); }, 10000)) {
        std::fprintf(stderr, "the link did not open its port\n");
        return 1;
    }
    QThread::msleep(300);

    std::vector<double> latencies;
    for (int i = 1; i <= messages; ++i) {
        const std::vector<Bytes> pieces = instrument.message(1000 + i);
        for (std::size_t p = 0; p + 1 < pieces.size(); ++p) {
            line.send(pieces[p]);
            if (line.receive(1, 5s) != Bytes{0x06}) {
                std::fprintf(stderr, "message %d: no ACK to piece %zu\n", i, p + 1);
                return 1;
            }
        }
        line.send(pieces.back());
        QElapsedTimer timer;
        timer.start();
        if (!WaitFor([&] { return Deliveries(data) >= i; }, 5000)) {
            std::fprintf(stderr, "message %d: no result file\n", i);
            return 1;
        }
        latencies.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    link.terminate();
    link.waitForFinished(5000);

    std::sort(latencies.begin(), latencies.end());
    const double median = latencies[latencies.size() / 2];
    const double worst = latencies.back();
    std::printf(
        "%s, last byte to result file, %d messages: median %.1f ms, worst %.1f ms "
        "(aim: both within %.0f ms)\n",
        instrument.code, messages, median, worst, instrument.readWaitMs + kAimAboveWaitMs);
    return 0;
}
