// kv_replay: plays a recorded message of an instrument through the real program on an isolated
// site and writes the result files it delivers into a folder of the operator's.

#include "PtyPair.h"
#include "ReplayInput.h"
#include "ReplayRun.h"
#include "ReplaySite.h"
#include "common/Clock.h"
#include "dialogues/Instruments.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTextStream>

#include <fstream>
#include <iterator>
#include <memory>
#include <optional>

using namespace Qt::StringLiterals;
using namespace orbline::replay;

namespace {

constexpr int kFailure = 1;
constexpr int kUsageError = 2;

const QString kUsage =
    u"usage: kv_replay [options] CODE INPUT OUTDIR\n"
    u"\n"
    u"Plays INPUT through kv_orbline for the instrument CODE (such as 0980) on a site of its\n"
    u"own in a temporary folder, and copies the result files delivered there into OUTDIR\n"
    u"(charts into OUTDIR/chart, the replay's main and diagnostic logs into OUTDIR/log).\n"
    u"No folder of a real site is written.\n"
    u"\n"
    u"INPUT is either\n"
    u"  a capture file: lines \"> BYTES\" sent by the instrument, \"< BYTES\" answered by the\n"
    u"    link, \"pause MS\", \"rate BAUD\" and \"chunk SIZE MS\", in the simulator's byte\n"
    u"    notation (kv_simulator --capture writes one); the answers are waited for and\n"
    u"    compared, never sent\n"
    u"  a work folder of the dialogue (such as AppPath/c980): its piece files NAME_NNNN.txt,\n"
    u"    each sent as one read, in the order of their numbers\n"
    u"\n"
    u"options:\n"
    u"  --ini FILE       the site's KV_Orbline.ini (read only): names, line and edit settings\n"
    u"  --prefix XX      settings prefix of the command line (section XXMC); default TN\n"
    u"  --orders FILE    a copy of this SQLite order store answers the queries; default empty\n"
    u"  --now 'YYYY-MM-DD HH:MM:SS'  the program's clock stands still at this time, so that\n"
    u"                   names and dates come out as on that day\n"
    u"  --settle MS      how long the program goes on after the last piece (default 2000,\n"
    u"                   7000 for 1671)\n"
    u"  --program PATH   kv_orbline to run; default the one beside kv_replay\n"
    u"\n"
    u"Exit status: 0 result files written (listed on standard output), 1 failure or no result\n"
    u"file, 2 bad command line.\n"_s;

QTextStream& Out() {
    static QTextStream out(stdout);
    return out;
}

QTextStream& Err() {
    static QTextStream err(stderr);
    return err;
}

int Usage(const QString& problem) {
    Err() << "kv_replay: " << problem << "\n\n" << kUsage;
    return kUsageError;
}

int Failure(const QString& problem) {
    Err() << "kv_replay: " << problem << '\n';
    return kFailure;
}

struct Options {
    QString code;
    QString input;
    QString outDir;
    QString ini;
    QString prefix = u"TN"_s;
    QString orders;
    QString now;
    QString program;
    std::optional<int> settleMs;
};

std::optional<Options> ParseArguments(const QStringList& args, QString& problem) {
    Options options;
    QStringList positional;
    for (qsizetype i = 1; i < args.size(); ++i) {
        const QString& arg = args.at(i);
        const bool hasValue = i + 1 < args.size();
        if (!arg.startsWith(u"--"_s)) {
            positional.append(arg);
            continue;
        }
        if (!hasValue) {
            problem = arg + u" wants a value"_s;
            return std::nullopt;
        }
        const QString& value = args.at(++i);
        if (arg == u"--ini"_s) {
            options.ini = value;
        } else if (arg == u"--prefix"_s) {
            options.prefix = value;
        } else if (arg == u"--orders"_s) {
            options.orders = value;
        } else if (arg == u"--now"_s) {
            options.now = value;
        } else if (arg == u"--program"_s) {
            options.program = value;
        } else if (arg == u"--settle"_s) {
            bool number = false;
            options.settleMs = value.toInt(&number);
            if (!number || *options.settleMs < 0) {
                problem = u"--settle wants milliseconds"_s;
                return std::nullopt;
            }
        } else {
            problem = u"unknown option "_s + arg;
            return std::nullopt;
        }
    }
    if (positional.size() != 3) {
        problem = u"CODE, INPUT and OUTDIR are wanted"_s;
        return std::nullopt;
    }
    options.code = positional.at(0);
    options.input = positional.at(1);
    options.outDir = positional.at(2);
    const orbline::Instrument* instrument = orbline::FindInstrument(options.code);
    if (instrument == nullptr || instrument->dialogue == nullptr) {
        problem = u"no dialogue for the instrument code "_s + options.code;
        return std::nullopt;
    }
    if (options.prefix.isEmpty() || options.prefix.contains(u'=')) {
        problem = u"--prefix wants a settings prefix"_s;
        return std::nullopt;
    }
    return options;
}

QString FindProgram(const QString& given) {
    if (!given.isEmpty()) return given;
    const QDir here(QCoreApplication::applicationDirPath());
    // Installed side by side, or in the build tree (build/tools/replay beside build/).
    for (const QString& candidate :
         {here.filePath(u"kv_orbline"_s), here.filePath(u"../../kv_orbline"_s)}) {
        if (QFileInfo(candidate).isExecutable()) return QDir::cleanPath(candidate);
    }
    return QStandardPaths::findExecutable(u"kv_orbline"_s);
}

std::optional<std::vector<Step>> ReadInput(const QString& input, QString& problem) {
    std::string error;
    std::optional<std::vector<Step>> steps;
    const std::string path = input.toStdString();
    if (QFileInfo(input).isDir()) {
        steps = ReadPieceFolder(path, error);
    } else {
        std::ifstream file(path, std::ios::binary);
        if (!file) {
            problem = u"cannot read "_s + input;
            return std::nullopt;
        }
        const std::string text{std::istreambuf_iterator<char>(file),
                               std::istreambuf_iterator<char>()};
        steps = ParseCapture(text, error);
    }
    if (!steps) problem = input + u": "_s + QString::fromStdString(error);
    return steps;
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication app(argc, argv);
    QString problem;
    const std::optional<Options> options = ParseArguments(QCoreApplication::arguments(), problem);
    if (!options) return Usage(problem);
    const std::optional<std::vector<Step>> steps = ReadInput(options->input, problem);
    if (!steps) return Failure(problem);
    const QString program = FindProgram(options->program);
    if (program.isEmpty()) return Failure(u"kv_orbline not found; name it with --program"_s);
    if (!QDir().mkpath(options->outDir)) return Failure(u"cannot make "_s + options->outDir);

    ReplaySite site;
    if (!site.valid()) return Failure(u"cannot make a temporary folder"_s);
    std::unique_ptr<orbline::sim::PtyPair> pty;
    try {
        pty = std::make_unique<orbline::sim::PtyPair>();
    } catch (const std::exception& e) {
        return Failure(QString::fromLocal8Bit(e.what()));
    }
    if (!site.writeSettings(options->ini, options->prefix, QString::fromStdString(pty->slavePath()),
                            &problem) ||
        !site.makeOrderStore(options->orders, &problem)) {
        return Failure(problem);
    }

    const RunSettings settings{
        .program = program,
        .code = options->code,
        .prefix = options->prefix,
        .now = options->now,
        .settleMs = options->settleMs.value_or(DefaultSettleMs(options->code)),
    };
    const RunOutcome outcome = PlaySteps(
        site, pty->masterFd(), [&pty] { return pty->takeOpenedMark(); }, *steps, settings);
    for (const QString& difference : outcome.differences) Err() << "note: " << difference << '\n';
    // The logs tell why a replay failed: they are copied whatever happened.
    const std::optional<QStringList> written = site.collect(options->outDir, &problem);
    if (!outcome.ok) return Failure(outcome.error);
    if (!written) return Failure(problem);
    if (written->isEmpty()) return Failure(u"the program delivered no result file"_s);
    for (const QString& file : *written) Out() << file << '\n';
    return 0;
}
