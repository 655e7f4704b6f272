// An order intake of a 200,000-line file in one process (orderload, polling as a dialogue
// does) while this process answers a lookup every 100 ms on the same SQLite store: the
// locking between the two is the operating system's, as between two instruments of a site.
// Prints the longest lookup, how many failed, and the intake's peak memory (its largest
// resident set, from the kernel's account of the finished child). Checks that the store holds
// every line.
//
// Aim: the longest lookup under 500 ms, none failed; the intake under 50 MB.
//
// Run: build/bench/bench_intake_vs_lookups [lines]

#include "common/Clock.h"
#include "common/RunContext.h"
#include "orders/OrderLookups.h"
#include "orders/OrderSchema.h"
#include "orders/OrderStore.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRandomGenerator>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QThread>
#include <QVariant>

#include <sys/resource.h>

#include <algorithm>
#include <cstdio>

using namespace Qt::StringLiterals;
using namespace orbline;

namespace {

constexpr double kAimLookupMs = 500;
constexpr double kAimPeakMb = 50;

QString Key(int n) {
    return u"K"_s + QString::number(n).rightJustified(9, u'0');
}

// An order of eight tests, written as the laboratory system writes it.
bool WriteOrderFile(const QString& path, int lines) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) return false;
    const QByteArray date = NowText(u"YYYYMMDD"_s).toLatin1();
    const QByteArray gap(40 - 7, ',');
    for (int n = 0; n < lines; ++n) {
        const QByteArray line = date + ',' + QByteArray::number(n % 997) + ",0930," +
                                Key(n).toLatin1() + ",1660,YAMADA TARO,YAMADA" + gap +
                                ",9NACL,CKNAC,Cl,Na,K,CREK,ALB2,FERR\r\n";
        if (file.write(line) != line.size()) return false;
    }
    return true;
}

qint64 StoredRows() {
    OpenOrderDb();
    qint64 rows = -1;
    {
        QSqlQuery q(OrderDb());
        if (q.exec(u"SELECT COUNT(*) FROM T_ORDER"_s) && q.next()) rows = q.value(0).toLongLong();
    }
    CloseOrderDb();
    return rows;
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const int lines = argc > 1 ? std::max(1, std::atoi(argv[1])) : 200000;
    // orderload sits in the build tree beside the other tools.
    const QString orderload =
        QFileInfo(QString::fromUtf8(KV_ORBLINE_EXE)).dir().filePath(u"tools/orderload/orderload"_s);
    QTemporaryDir dir;
    const QString work = dir.path() + u"/work"_s;
    QDir().mkpath(work + u"/orders"_s);
    QString error;
    if (!CreateOrderStore(dir.path() + u"/KV_Orbline2.min"_s, &error) ||
        !WriteOrderFile(work + u"/orders/1660_big.csv"_s, lines)) {
        std::fprintf(stderr, "cannot prepare the site: %s\n", error.toUtf8().constData());
        return 1;
    }
    Ctx().InstrumentCode = u"1660"_s;
    Ctx().AppPath = dir.path();
    Ctx().DbPath = dir.path();
    Ctx().ShowMode = u"0"_s;

    QProcess intake;
    intake.start(orderload, {u"drain"_s, work, dir.path(), u"600"_s});
    if (!intake.waitForStarted()) {
        std::fprintf(stderr, "cannot start %s\n", orderload.toUtf8().constData());
        return 1;
    }
    QElapsedTimer clock;
    clock.start();
    qint64 lookups = 0;
    qint64 found = 0;
    double longestMs = 0;
    auto* random = QRandomGenerator::global();
    while (intake.state() != QProcess::NotRunning) {
        QString kana;
        QString tests;
        QElapsedTimer lookup;
        lookup.start();
        LookupOrder1660(Key(random->bounded(lines)), kana, tests, u"1660"_s);
        longestMs = std::max(longestMs, static_cast<double>(lookup.nsecsElapsed()) / 1e6);
        ++lookups;
        if (!tests.isEmpty()) ++found;
        intake.waitForFinished(100);
    }
    const double seconds = static_cast<double>(clock.elapsed()) / 1000;
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    const double peakMb = static_cast<double>(usage.ru_maxrss) / 1024;  // kB on Linux
    const qint64 rows = StoredRows();

    std::printf(
        "intake of %d lines: %.1f s, %lld rows stored, peak memory %.1f MB (aim: under "
        "%.0f MB); %s",
        lines, seconds, static_cast<long long>(rows), peakMb, kAimPeakMb,
        intake.readAllStandardOutput().constData());
    std::printf("lookups: %lld, found %lld, failed %d, longest %.0f ms (aim: under %.0f ms)\n",
                static_cast<long long>(lookups), static_cast<long long>(found),
                Ctx().OrderDbFailures, longestMs, kAimLookupMs);
    const bool whole = intake.exitCode() == 0 && rows == lines && Ctx().OrderDbFailures == 0;
    if (!whole) std::fprintf(stderr, "%s", intake.readAllStandardError().constData());
    return whole && longestMs < kAimLookupMs && peakMb < kAimPeakMb ? 0 : 1;
}
