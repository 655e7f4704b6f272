#pragma once
// A kv_orbline process under test: a site folder with its settings file, the process started on
// it with the port on a pseudo-terminal, and the instrument's end of that terminal.

#include "support/LineHarness.h"

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace orbline::test {

// The end of a log line under the fixed clock that start() gives the process.
inline const QString kStamp = QStringLiteral(":2025-04-16 09:30:15");

class LinkProcess {
  public:
    LinkProcess();
    ~LinkProcess();
    LinkProcess(const LinkProcess&) = delete;
    LinkProcess& operator=(const LinkProcess&) = delete;

    // The settings file: section User with the work folder "wk", the delivery folder "data"
    // and the chart folder "chart", section TNMC with the instrument's name, a line format, the
    // device of `line` and the extra keys ("Key=value" lines).
    void writeSettings(const QString& extraKeys = QString(), const QString& device = QString());
    // Starts kv_orbline with "code=showMode=TN=site" and a fixed clock.
    void start(const QString& code = QStringLiteral("2620"));
    // Before writeSettings: the instrument's name in the settings (and so in every record).
    QString instrumentName = QStringLiteral("TOMEY");
    // Before writeSettings: more keys of section User ("Key=value" lines).
    QString userKeys;
    // Before start: a factor for the protocol's waits (the 10 ms round, the 100 ms read wait).
    QString timeScale;
    // Before start: the second field of the command line ("1" shows the console).
    QString showMode = QStringLiteral("0");
    // Before start: "NAME=value" sets a variable of the process, "NAME" alone removes it.
    QStringList environment;
    // Waits until the main log holds the text.
    bool waitForLog(const QString& text, int milliseconds = 10000) const;
    // Waits until the delivery folder holds `count` files.
    bool waitForDeliveries(int count, int milliseconds = 10000) const;
    // SIGTERM (or another signal), as a parent closes the process.
    void requestClose(int signal = 15);
    // Any signal to the process (SIGSTOP, SIGCONT, ...).
    void sendSignal(int signal);
    // The exit status, or -1 when the process did not end in time or crashed.
    int finish(int milliseconds = 10000);
    // requestClose, then finish: 0 for a clean end.
    int close(int signal = 15) {
        requestClose(signal);
        return finish();
    }

    // The messages of the main log, each without its "【...】" head, in order.
    QStringList logMessages() const;
    // What the process wrote to standard error (kept in a file of the site, not forwarded).
    QString standardError() const;
    // The diagnostic log of the code, in the site's code page, decoded.
    QString diagnosticLog(const QString& code = QStringLiteral("2620")) const;
    QStringList deliveries() const;
    QString readDelivery(const QString& name) const;
    QStringList workFiles() const;

    QString native(const QString& relative = QString()) const;
    LineHarness line;

  private:
    QTemporaryDir dir_;
    QProcess process_;
};

// Splits a tonometer transmission into the blocks the instrument sends one at a time: the
// start text ENQ CR, and each text up to ETX CR or EOT CR.
std::vector<QByteArray> TonometerBlocks(const QByteArray& transmission);

QByteArray ReadFixture(const QString& relative);

}  // namespace orbline::test
