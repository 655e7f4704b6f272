#include "ReplayRun.h"

#include "SimLine.h"
#include "common/Clock.h"

#include <QProcess>
#include <QProcessEnvironment>

#include <csignal>
#include <thread>

using namespace Qt::StringLiterals;

namespace orbline::replay {

namespace {

using std::chrono::milliseconds;

// The longest read window of a dialogue is a second: a piece not answered by then got no
// answer, and the next one is read on its own.
constexpr int kGapMs = 1500;
constexpr int kQuietMs = 150;
constexpr int kReplyLimitMs = 5000;
constexpr int kOpenLimitMs = 15000;
constexpr int kCloseLimitMs = 15000;

milliseconds Scaled(int ms) {
    return milliseconds(ScaledMilliseconds(ms));
}

bool NextIsReply(const std::vector<Step>& steps, std::size_t i) {
    for (std::size_t j = i + 1; j < steps.size(); ++j) {
        switch (steps[j].kind) {
            case StepKind::Send:
                return false;
            case StepKind::Reply:
                return true;
            case StepKind::Pause:
            case StepKind::Rate:
            case StepKind::Chunk:
                break;
        }
    }
    return false;
}

QString Shown(const sim::Bytes& bytes) {
    return QString::fromStdString(sim::Visible(bytes));
}

bool WaitForOpen(const QProcess& process, const std::function<bool()>& takeOpenedMark) {
    const auto deadline = std::chrono::steady_clock::now() + milliseconds(kOpenLimitMs);
    while (!takeOpenedMark()) {
        if (process.state() != QProcess::Running || std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(milliseconds(20));
    }
    // The program flushes its input right after it sets the line format.
    std::this_thread::sleep_for(milliseconds(200));
    return true;
}

}  // namespace

int DefaultSettleMs(const QString& code) {
    // The tympanometer's test ends with five seconds of silence.
    return code == u"1671"_s ? 7000 : 2000;
}

RunOutcome PlaySteps(const ReplaySite& site, int masterFd,
                     const std::function<bool()>& takeOpenedMark, const std::vector<Step>& steps,
                     const RunSettings& settings) {
    RunOutcome outcome;
    QProcess program;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    if (!settings.now.isEmpty()) env.insert(u"KV_ORBLINE_NOW"_s, settings.now);
    program.setProcessEnvironment(env);
    program.setStandardErrorFile(site.native(u"kv_orbline.stderr"_s));
    program.start(settings.program,
                  {settings.code + u"=0="_s + settings.prefix + u"="_s + site.appPath()});
    const auto fail = [&](const QString& why) {
        if (program.state() != QProcess::NotRunning) {
            program.kill();
            program.waitForFinished(kCloseLimitMs);
        }
        outcome.error = why;
        return outcome;
    };
    if (!program.waitForStarted(kOpenLimitMs)) return fail(u"cannot start "_s + settings.program);
    if (!WaitForOpen(program, takeOpenedMark))
        return fail(u"the program did not open its port (see the log in the output folder)"_s);

    sim::SimLine line(masterFd);
    int piece = 0;
    for (std::size_t i = 0; i < steps.size(); ++i) {
        const Step& step = steps[i];
        switch (step.kind) {
            case StepKind::Send:
                ++piece;
                if (!line.send(step.bytes)) return fail(QString::fromStdString(line.error()));
                if (NextIsReply(steps, i)) break;
                // No answer captured: whatever comes is taken and set aside.
                if (!line.receive(1, Scaled(kGapMs)).empty()) line.drain(Scaled(kQuietMs));
                break;
            case StepKind::Reply: {
                const sim::Bytes got = line.receive(step.length, Scaled(kReplyLimitMs));
                const bool shownWhole = step.bytes.size() == step.length;
                if (got.size() != step.length || (shownWhole && got != step.bytes)) {
                    outcome.differences.append(
                        u"after piece %1 the program answered %2, the "
                        u"capture shows %3"_s.arg(piece)
                            .arg(Shown(got), Shown(step.bytes)));
                }
                break;
            }
            case StepKind::Pause:
                std::this_thread::sleep_for(Scaled(step.milliseconds));
                break;
            case StepKind::Rate:
                line.setRate(static_cast<std::uint32_t>(step.length));
                break;
            case StepKind::Chunk:
                line.setChunks(step.length, Scaled(step.milliseconds));
                break;
        }
        if (program.state() != QProcess::Running)
            return fail(u"the program ended during the replay, at piece %1"_s.arg(piece));
    }
    line.drain(Scaled(settings.settleMs));
    if (program.state() != QProcess::Running)
        return fail(u"the program ended before it was closed"_s);
    ::kill(static_cast<pid_t>(program.processId()), SIGTERM);
    if (!program.waitForFinished(kCloseLimitMs)) return fail(u"the program did not close"_s);
    if (program.exitStatus() != QProcess::NormalExit || program.exitCode() != 0)
        return fail(u"the program ended abnormally (status %1)"_s.arg(program.exitCode()));
    outcome.ok = true;
    return outcome;
}

}  // namespace orbline::replay
