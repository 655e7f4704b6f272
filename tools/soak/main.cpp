// kv_soak: the twelve instruments at once on one site for a while, then checks that every
// result was delivered once and whole, every order stored, nothing failed and no process ended
// early, and prints what each process cost.
//
//   kv_soak [--seconds N] [--pg ADDRESS] [--keep]
//
// --seconds: how long the instruments play (default 600); --pg: the order store in this
// PostgreSQL database (empty, the soak makes T_ORDER) instead of the site's SQLite file;
// --keep: leave the site folder (it is left anyway when the soak fails).
// Exit status: 0 when every check passed, 1 when one failed, 2 for a bad command line.

#include "InstrumentLoop.h"
#include "LinkChild.h"
#include "MainLogReader.h"
#include "OrderFeed.h"
#include "SoakChecks.h"
#include "SoakInstruments.h"
#include "SoakSite.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>

#include <chrono>
#include <cstdio>
#include <iostream>
#include <memory>
#include <optional>
#include <thread>

using namespace Qt::StringLiterals;
using namespace orbline::soak;
using Clock = std::chrono::steady_clock;

namespace {

constexpr const char* kUsage = "usage: kv_soak [--seconds N] [--pg ADDRESS] [--keep]\n";
// The clock of every process, so that every pass of an instrument delivers the same bytes.
constexpr const char* kFixedNow = "KV_ORBLINE_NOW=2025-04-16 09:30:15";
constexpr std::chrono::milliseconds kFeedInterval{1000};
constexpr std::chrono::seconds kProgressEvery{60};
// A file is taken one intake poll (1000 rounds of at least 10 ms) after it stopped changing.
constexpr std::chrono::seconds kIntakeLimit{120};
constexpr std::chrono::seconds kDeliveryLimit{30};
constexpr std::chrono::seconds kCloseLimit{15};

struct Options {
    int seconds = 600;
    QString pgAddress;
    bool keep = false;
};

std::optional<Options> ParseArguments(const QStringList& args) {
    Options options;
    for (qsizetype i = 1; i < args.size(); ++i) {
        const bool hasValue = i + 1 < args.size();
        if (args.at(i) == u"--seconds"_s && hasValue) {
            bool ok = false;
            options.seconds = args.at(++i).toInt(&ok);
            if (!ok || options.seconds <= 0) return std::nullopt;
        } else if (args.at(i) == u"--pg"_s && hasValue) {
            options.pgAddress = args.at(++i);
        } else if (args.at(i) == u"--keep"_s) {
            options.keep = true;
        } else {
            return std::nullopt;
        }
    }
    return options;
}

std::vector<OrderTarget> OrderTargets(const SoakSite& site) {
    std::vector<OrderTarget> targets;
    for (const SoakInstrument& instrument : SoakInstruments()) {
        if (instrument.orderTest.isEmpty()) continue;
        targets.push_back({instrument.code, instrument.orderTest, site.orderFolders().at(0)});
        if (instrument.secondOrderPath)
            targets.push_back({instrument.code, instrument.orderTest, site.orderFolders().at(1)});
    }
    return targets;
}

template <typename Condition>
bool WaitUntil(std::chrono::seconds limit, Condition condition) {
    const auto deadline = Clock::now() + limit;
    while (!condition()) {
        if (Clock::now() >= deadline) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
    }
    return true;
}

bool OrderFoldersEmpty(const SoakSite& site) {
    for (const QString& folder : site.orderFolders()) {
        if (!QDir(folder).entryList({u"*.csv"_s}, QDir::Files).isEmpty()) return false;
    }
    return true;
}

int DeliveredFiles(const SoakSite& site) {
    return static_cast<int>(QDir(site.native(u"data"_s)).entryList(QDir::Files).size());
}

struct Instance {
    const SoakInstrument* instrument;
    std::unique_ptr<InstrumentLoop> loop;
    LinkChild link;
    std::unique_ptr<MainLogReader> mainLog;
    bool endedEarly = false;
};

void NoteEarlyEnd(Instance& instance, QStringList& failures) {
    if (instance.endedEarly || instance.link.running()) return;
    instance.endedEarly = true;
    failures.append(instance.instrument->code +
                    u": the process ended early, status %1"_s.arg(instance.link.exitStatus()));
}

void PrintProgress(int elapsed, const std::vector<std::unique_ptr<Instance>>& instances) {
    std::cout << "soak: " << elapsed << " s, passes";
    for (const auto& instance : instances)
        std::cout << ' ' << instance->instrument->code.toStdString() << ':'
                  << instance->loop->passes();
    std::cout << std::endl;
}

void PrintReport(const std::vector<std::unique_ptr<Instance>>& instances,
                 const std::map<QString, Delivered>& delivered, const std::map<QString, int>& lines,
                 const std::map<QString, int>& rows) {
    std::printf("%-5s %7s %7s %7s %13s %9s %9s %5s\n", "code", "passes", "files", "charts",
                "orders/rows", "cpu s", "peak MiB", "exit");
    for (const auto& instance : instances) {
        const QString code = instance->instrument->code;
        const Delivered d = delivered.at(code);
        const auto count = [](const std::map<QString, int>& map, const QString& key) {
            const auto it = map.find(key);
            return it == map.end() ? 0 : it->second;
        };
        const std::string orders =
            instance->instrument->orderTest.isEmpty()
                ? std::string("-")
                : std::to_string(count(lines, code)) + "/" + std::to_string(count(rows, code));
        std::printf("%-5s %7d %7d %7s %13s %9.2f %9.1f %5d\n", code.toStdString().c_str(),
                    instance->loop->passes(), d.files,
                    instance->instrument->chart ? std::to_string(d.charts).c_str() : "-",
                    orders.c_str(), instance->link.cpuSeconds(),
                    static_cast<double>(instance->link.peakKiB()) / 1024.0,
                    instance->link.exitStatus());
    }
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const std::optional<Options> options = ParseArguments(QCoreApplication::arguments());
    if (!options) {
        std::cerr << kUsage;
        return 2;
    }
    QTemporaryDir folder(QDir::tempPath() + u"/kv_soak-XXXXXX"_s);
    SoakSite site{folder.path(), options->pgAddress};
    QString error;
    if (!folder.isValid() || !MakeSite(site, &error)) {
        std::cerr << "kv_soak: cannot make the site: " << error.toStdString() << '\n';
        return 1;
    }
    std::cout << "soak: site " << site.root.toStdString() << ", " << options->seconds << " s"
              << std::endl;

    QStringList failures;
    std::vector<std::unique_ptr<Instance>> instances;
    for (const SoakInstrument& instrument : SoakInstruments()) {
        auto instance = std::make_unique<Instance>();
        instance->instrument = &instrument;
        const QString code = instrument.code;
        std::string why;
        try {
            instance->loop = std::make_unique<InstrumentLoop>(
                ORBLINE_SOURCE_DIR "/tools/simulator/scripts/" + instrument.script.toStdString(),
                site.device(code).toStdString());
        } catch (const std::exception& e) {
            std::cerr << "kv_soak: " << code.toStdString() << ": " << e.what() << '\n';
            return 1;
        }
        instance->mainLog = std::make_unique<MainLogReader>(site.root, code);
        instance->loop->start();
        const QString commandLine = code + u"=0="_s + SoakPrefix(code) + u'=' + site.appPath();
        if (!instance->link.start(KV_ORBLINE_EXE, commandLine.toStdString(), {kFixedNow},
                                  site.native(u"kv_orbline"_s + code + u".stderr"_s).toStdString(),
                                  &why)) {
            std::cerr << "kv_soak: " << why << '\n';
            return 1;
        }
        instances.push_back(std::move(instance));
    }

    OrderFeed feed(OrderTargets(site));
    const auto start = Clock::now();
    const auto end = start + std::chrono::seconds(options->seconds);
    auto nextProgress = start + kProgressEvery;
    bool feeding = true;
    while (Clock::now() < end) {
        if (feeding && !feed.next()) {
            failures.append(u"order feed: "_s + feed.error());
            feeding = false;
        }
        for (auto& instance : instances) {
            instance->mainLog->poll();
            NoteEarlyEnd(*instance, failures);
        }
        if (Clock::now() >= nextProgress) {
            const auto elapsed =
                std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - start);
            PrintProgress(static_cast<int>(elapsed.count()), instances);
            nextProgress += kProgressEvery;
        }
        std::this_thread::sleep_for(kFeedInterval);
    }
    if (!feed.finish()) failures.append(u"order feed: "_s + feed.error());

    // Every pass under way ends, every order file is taken, every result is delivered; then the
    // parent closes the processes, with the lines still open.
    for (auto& instance : instances) instance->loop->stop();
    int expectedFiles = 0;
    for (auto& instance : instances) {
        instance->loop->join();
        expectedFiles += instance->loop->passes();
        if (instance->loop->failed()) {
            failures.append(instance->instrument->code +
                            u": pass %1 failed:\n"_s.arg(instance->loop->passes() + 1) +
                            QString::fromStdString(instance->loop->failedPassLog()).trimmed());
        }
    }
    if (!WaitUntil(kIntakeLimit, [&] { return OrderFoldersEmpty(site); }))
        failures.append(u"order files still waiting after %1 s"_s.arg(kIntakeLimit.count()));
    WaitUntil(kDeliveryLimit, [&] { return DeliveredFiles(site) >= expectedFiles; });
    for (auto& instance : instances) NoteEarlyEnd(*instance, failures);
    for (auto& instance : instances) instance->link.close(kCloseLimit);
    for (auto& instance : instances) {
        if (!instance->endedEarly && instance->link.exitStatus() != 0) {
            failures.append(instance->instrument->code +
                            u": the process ended with status %1 on the close"_s.arg(
                                instance->link.exitStatus()));
        }
    }

    std::map<QString, Delivered> delivered;
    for (const auto& instance : instances) {
        const SoakInstrument& instrument = *instance->instrument;
        delivered[instrument.code] =
            CheckDeliveries(site.root, instrument, instance->loop->passes(), failures);
        instance->mainLog->poll();
        CheckLogs(site.root, instrument.code, instance->mainLog->failures(), failures);
    }
    CheckWorkFolder(site.root, failures);
    const std::optional<std::map<QString, int>> rows = RowsByInstrument(site, &error);
    if (!rows) failures.append(u"order store: "_s + error);
    CheckOrders(site.orderFolders(), feed.linesWritten(), rows.value_or(std::map<QString, int>()),
                failures);

    PrintReport(instances, delivered, feed.linesWritten(), rows.value_or(std::map<QString, int>()));
    std::cout << "order files: " << feed.files()
              << ", store: " << (options->pgAddress.isEmpty() ? "SQLite" : "PostgreSQL")
              << std::endl;
    if (failures.isEmpty()) {
        if (options->keep) folder.setAutoRemove(false);
        std::cout << "soak passed" << std::endl;
        return 0;
    }
    folder.setAutoRemove(false);
    std::cout << "soak FAILED (site kept in " << site.root.toStdString() << "):\n";
    for (const QString& failure : failures) std::cout << "  " << failure.toStdString() << '\n';
    return 1;
}
