// orderload: one process of load on a shared order store, for trying a store (a file on a
// share, a server) before instruments depend on it, and for the concurrency test.
//
//   orderload take <work-folder> <store-folder> <seconds> <tag>
//       drops order files of 20 lines for instrument 1660 into <work-folder>/orders and takes
//       them with the intake, until the time is up; prints "sent <lines>"
//   orderload look <work-folder> <store-folder> <seconds> <tag>...
//       looks up orders of the given takers' tags, until the time is up; prints
//       "lookups <n> found <m>"
//   orderload drain <work-folder> <store-folder> <seconds>
//       polls <work-folder>/orders every 100 ms for files of 1660, as a dialogue does, until none
//       is left or the time is up; prints "left <files>"
//
// The store is <store-folder>/KV_Orbline2.min, or the server when <store-folder> is a
// postgresql:// address. Exit status 1 when any statement on the store
// failed (the last error goes to standard error), 2 for a bad command line.

#include "common/Clock.h"
#include "common/FindFiles.h"
#include "common/RunContext.h"
#include "common/TextFile.h"
#include "orders/OrderIntake.h"
#include "orders/OrderLookups.h"
#include "orders/OrderStore.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QRandomGenerator>
#include <QThread>

#include <QFile>

#include <chrono>
#include <cstdio>

using namespace Qt::StringLiterals;
using namespace orbline;

namespace {

constexpr int kLinesPerFile = 20;

QString Key(const QString& tag, int file, int line) {
    return tag + u"-"_s + QString::number(file) + u"-"_s + QString::number(line);
}

int Report(const QString& text) {
    std::printf("%s\n", text.toUtf8().constData());
    if (Ctx().OrderDbFailures == 0) return 0;
    std::fprintf(stderr, "orderload: %d failed statements, last: %s\n", Ctx().OrderDbFailures,
                 Ctx().OrderDbLastError.toUtf8().constData());
    return 1;
}

int Take(const QString& tag, QDeadlineTimer deadline) {
    const QString today = NowText(u"YYYYMMDD"_s);
    qint64 sent = 0;
    for (int file = 0; !deadline.hasExpired(); ++file) {
        QStringList lines;
        for (int line = 1; line <= kLinesPerFile; ++line) {
            QStringList fields = {today, QString::number(line), u"0930"_s, Key(tag, file, line),
                                  u"1660"_s};
            while (fields.size() < 40) fields.append(QString());
            fields << u"9NACL"_s << u"CKNAC"_s << u"FERR"_s;
            lines.append(fields.join(u","_s));
        }
        const QString path = Ctx().OrderPath + u"/1660_"_s + QString::number(file) + u".csv"_s;
        if (!WriteNewLine(path, lines.join(u"\r\n"_s))) return Report(u"cannot write "_s + path);
        // The first poll only sees the file; the next, finding it unchanged, takes it.
        TakeOrders1660();
        TakeOrders1660();
        sent += kLinesPerFile;
        if (QFile::exists(path)) return Report(u"not taken: "_s + path);
    }
    return Report(u"sent "_s + QString::number(sent));
}

int Look(const QStringList& tags, QDeadlineTimer deadline) {
    qint64 lookups = 0;
    qint64 found = 0;
    auto* random = QRandomGenerator::global();
    while (!deadline.hasExpired()) {
        const QString& tag = tags[random->bounded(static_cast<int>(tags.size()))];
        QString kana;
        QString tests;
        // The first files of a taker: written early, so that a short run finds some too.
        LookupOrder1660(Key(tag, random->bounded(10), random->bounded(1, kLinesPerFile + 1)), kana,
                        tests, u"1660"_s);
        ++lookups;
        if (!tests.isEmpty()) ++found;
    }
    return Report(u"lookups "_s + QString::number(lookups) + u" found "_s + QString::number(found));
}

int Drain(QDeadlineTimer deadline) {
    while (!FindFilesDeep(Ctx().OrderPath, u"1660*.csv"_s).isEmpty() && !deadline.hasExpired()) {
        TakeOrders1660();
        QThread::msleep(100);
    }
    return Report(u"left "_s +
                  QString::number(FindFilesDeep(Ctx().OrderPath, u"1660*.csv"_s).size()));
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments().mid(1);
    bool secondsOk = false;
    const bool drain = args.size() == 4 && args[0] == u"drain"_s;
    const int seconds = args.size() >= 4 ? args[3].toInt(&secondsOk) : 0;
    if ((args.size() < 5 && !drain) || !secondsOk || seconds < 1 ||
        (args[0] != u"take"_s && args[0] != u"look"_s && !drain) ||
        (args[0] == u"take"_s && args.size() != 5)) {
        std::fprintf(stderr,
                     "usage: orderload take <work-folder> <store-folder> <seconds> <tag>\n"
                     "       orderload look <work-folder> <store-folder> <seconds> <tag>...\n"
                     "       orderload drain <work-folder> <store-folder> <seconds>\n");
        return 2;
    }
    RunContext& ctx = Ctx();
    ctx.InstrumentCode = u"1660"_s;
    ctx.AppPath = args[1];
    if (IsPostgresAddress(args[2]))
        ctx.DbConnect = args[2];
    else
        ctx.DbPath = args[2];
    ctx.OrderPath = args[1] + u"/orders"_s;
    QDir().mkpath(ctx.OrderPath);
    const QDeadlineTimer deadline{std::chrono::seconds{seconds}};
    if (drain) return Drain(deadline);
    return args[0] == u"take"_s ? Take(args[4], deadline) : Look(args.mid(4), deadline);
}
