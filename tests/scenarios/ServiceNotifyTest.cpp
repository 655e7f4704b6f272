// The process under a service manager: started as systemd starts a Type=notify unit with a
// watchdog (NOTIFY_SOCKET, WATCHDOG_USEC), it says READY once its port is open, WATCHDOG while
// its logic thread comes round, and STOPPING at its end. The messages are read from a datagram
// socket of the test's own.

#include "support/AstmInstrument.h"

#include <gtest/gtest.h>

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstring>
#include <optional>
#include <string>
#include <thread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace orbline::test;
using Clock = std::chrono::steady_clock;

namespace {

// What the watchdog asks for; the process answers every half of it.
constexpr auto kWatchdog = 400ms;

// The service manager's end: a datagram socket the process finds through NOTIFY_SOCKET.
class NotifySocket {
  public:
    NotifySocket() : path_(dir_.path().toStdString() + "/notify") {
        fd_ = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, path_.c_str(), sizeof(address.sun_path) - 1);
        bound_ = fd_ >= 0 &&
                 ::bind(fd_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
    }
    ~NotifySocket() {
        if (fd_ >= 0) ::close(fd_);
    }
    NotifySocket(const NotifySocket&) = delete;
    NotifySocket& operator=(const NotifySocket&) = delete;

    bool bound() const { return bound_; }
    // The environment of a process that systemd started with a watchdog.
    QStringList environment() const {
        return {
            u"NOTIFY_SOCKET="_s + QString::fromStdString(path_),
            u"WATCHDOG_USEC="_s + QString::number(std::chrono::microseconds(kWatchdog).count())};
    }
    // The next message within the time, or nothing.
    std::optional<std::string> next(std::chrono::milliseconds within) {
        pollfd ready{fd_, POLLIN, 0};
        if (::poll(&ready, 1, static_cast<int>(within.count())) != 1) return std::nullopt;
        char buffer[512];
        const ssize_t size = ::recv(fd_, buffer, sizeof(buffer), 0);
        if (size < 0) return std::nullopt;
        std::string message(buffer, static_cast<std::size_t>(size));
        while (!message.empty() && message.back() == '\n') message.pop_back();
        return message;
    }
    // Skips messages until `wanted` comes; false when it does not come within the time.
    bool waitFor(const std::string& wanted, std::chrono::milliseconds within) {
        const auto end = Clock::now() + within;
        while (Clock::now() < end) {
            const auto left =
                std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
            if (next(left) == wanted) return true;
        }
        return false;
    }
    // The longest time without a message over the whole span, and how many came.
    struct Gaps {
        Clock::duration longest{};
        int messages = 0;
        std::string other;  // a message that was not WATCHDOG=1
    };
    Gaps watch(std::chrono::milliseconds span) {
        Gaps gaps;
        const auto end = Clock::now() + span;
        auto last = Clock::now();
        while (Clock::now() < end) {
            const auto left =
                std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
            const auto message = next(left);
            const auto now = Clock::now();
            gaps.longest = std::max(gaps.longest, now - last);
            last = now;
            if (!message) break;
            ++gaps.messages;
            if (*message != "WATCHDOG=1") gaps.other = *message;
        }
        return gaps;
    }
    // Throws away what has come so far.
    void drain() {
        while (next(0ms)) {
        }
    }

  private:
    QTemporaryDir dir_;
    std::string path_;
    int fd_ = -1;
    bool bound_ = false;
};

std::string Milliseconds(Clock::duration duration) {
    return std::to_string(std::chrono::duration_cast<std::chrono::milliseconds>(duration).count()) +
           " ms";
}

}  // namespace

TEST(ServiceNotify, ReadyOnceThePortIsOpenThenWatchdogUntilTheProcessIsStoppedAndStoppingAtClose) {
    NotifySocket manager;
    ASSERT_TRUE(manager.bound());
    LinkProcess link;
    link.environment = manager.environment();
    link.writeSettings();
    link.start();

    ASSERT_TRUE(manager.waitFor("READY=1", 10s));
    EXPECT_TRUE(link.waitForLog(u"受信開始(Wait)"_s, 0));

    // Regular: never as long as the watchdog's time without a message.
    const auto running = manager.watch(2s);
    EXPECT_EQ(running.other, "");
    EXPECT_GE(running.messages, 5);
    EXPECT_LT(running.longest, kWatchdog) << Milliseconds(running.longest);

    link.sendSignal(SIGSTOP);
    std::this_thread::sleep_for(50ms);
    manager.drain();
    EXPECT_EQ(manager.next(3 * kWatchdog), std::nullopt);
    link.sendSignal(SIGCONT);
    EXPECT_EQ(manager.next(2 * kWatchdog), "WATCHDOG=1");

    link.requestClose(SIGTERM);
    EXPECT_TRUE(manager.waitFor("STOPPING=1", 5s));
    EXPECT_EQ(link.finish(), 0);
}

// A loop that does not come round (here an order intake that waits for a lock the store's other
// writer holds) sends nothing, so the manager would restart it: the messages come from the
// logic thread itself, not from a thread of their own.
TEST(ServiceNotify, ALoopThatHangsSendsNoWatchdogUntilItComesRoundAgain) {
    NotifySocket manager;
    ASSERT_TRUE(manager.bound());
    LinkProcess link;
    link.environment = manager.environment();
    link.timeScale = u"0.1"_s;
    CreateOrderStore(link);
    StartInstrument(link, u"0980"_s, u"HLC"_s, OrderFolderKeys(link));
    ASSERT_TRUE(manager.waitFor("READY=1", 5s));

    const QString holder = u"service-notify-holder"_s;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, holder);
        db.setDatabaseName(link.native(u"KV_Orbline2.min"_s));
        ASSERT_TRUE(db.open()) << db.lastError().text().toStdString();
        QSqlQuery lock(db);
        ASSERT_TRUE(lock.exec(u"BEGIN EXCLUSIVE"_s)) << lock.lastError().text().toStdString();
        DropOrderFile(link, u"orders/0980_0416.csv"_s, u"K0005"_s, u"0980"_s, {u"HbA1c"_s});

        // The poll takes the file after a second look, then waits for the lock.
        const auto end = Clock::now() + 15s;
        bool silent = false;
        while (!silent && Clock::now() < end) silent = !manager.next(3 * kWatchdog).has_value();
        EXPECT_TRUE(silent) << "the watchdog went on while the intake waited";
        EXPECT_FALSE(link.waitForLog(u"オーダデータ取得完了(Edit)"_s, 0));

        EXPECT_TRUE(lock.exec(u"ROLLBACK"_s)) << lock.lastError().text().toStdString();
        lock.finish();
        db.close();
    }
    QSqlDatabase::removeDatabase(holder);
    EXPECT_TRUE(manager.waitFor("WATCHDOG=1", 5s));
    EXPECT_TRUE(link.waitForLog(u"オーダデータ取得完了(Edit)"_s));
    EXPECT_EQ(link.close(), 0);
}
