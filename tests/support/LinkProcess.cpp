#include "support/LinkProcess.h"

#include "common/AnsiCodec.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcessEnvironment>
#include <QThread>

#include <csignal>

using namespace Qt::StringLiterals;

namespace orbline::test {

namespace {

QByteArray ReadAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

template <typename Condition>
bool WaitUntil(int milliseconds, Condition condition) {
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > milliseconds) return false;
        QThread::msleep(20);
    }
    return true;
}

QString Backslashed(QString path) {
    return path.replace(u'/', u'\\');
}

}  // namespace

LinkProcess::LinkProcess() {
    QDir(dir_.path()).mkpath(u"wk"_s);
    QDir(dir_.path()).mkpath(u"data"_s);
}

LinkProcess::~LinkProcess() {
    if (process_.state() != QProcess::NotRunning) {
        process_.kill();
        process_.waitForFinished(5000);
    }
}

void LinkProcess::writeSettings(const QString& extraKeys, const QString& device) {
    const QString site = Backslashed(dir_.path());
    const QString text =
        u"[User]\r\nJyusinWKPath="_s + site + u"\\wk\r\nJyusinDataPath="_s + site +
        u"\\data\r\nJyusinDataPath2="_s + site + u"\\chart\r\n"_s + userKeys +
        u"[TNMC]\r\nName="_s + instrumentName + u"\r\nPort=1\r\nBaudRate=9600\r\n"_s +
        u"DataBits=8\r\nParity=n\r\nStopBits=1\r\nHandshake=N\r\nTimeOut=1000\r\n"_s +
        u"Device="_s + (device.isEmpty() ? QString::fromStdString(line.device()) : device) +
        u"\r\n"_s + extraKeys;
    QFile file(native(u"KV_Orbline.ini"_s));
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate)) file.write(EncodeAnsi(text));
}

void LinkProcess::start(const QString& code) {
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(u"KV_ORBLINE_NOW"_s, u"2025-04-16 09:30:15"_s);
    if (!timeScale.isEmpty()) env.insert(u"KV_ORBLINE_TIME_SCALE"_s, timeScale);
    for (const QString& variable : environment) {
        const qsizetype equals = variable.indexOf(u'=');
        if (equals < 0)
            env.remove(variable);
        else
            env.insert(variable.left(equals), variable.mid(equals + 1));
    }
    process_.setProcessEnvironment(env);
    process_.setStandardErrorFile(native(u"kv_orbline.stderr"_s));
    process_.start(QString::fromLocal8Bit(KV_ORBLINE_EXE),
                   {code + u"="_s + showMode + u"=TN="_s + Backslashed(dir_.path())});
    process_.waitForStarted(5000);
}

bool LinkProcess::waitForLog(const QString& text, int milliseconds) const {
    return WaitUntil(milliseconds, [&] { return logMessages().join(u'\n').contains(text); });
}

bool LinkProcess::waitForDeliveries(int count, int milliseconds) const {
    return WaitUntil(milliseconds, [&] { return deliveries().size() >= count; });
}

void LinkProcess::requestClose(int signal) {
    sendSignal(signal);
}

void LinkProcess::sendSignal(int signal) {
    ::kill(static_cast<pid_t>(process_.processId()), signal);
}

int LinkProcess::finish(int milliseconds) {
    if (!process_.waitForFinished(milliseconds)) return -1;
    return process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1;
}

QStringList LinkProcess::logMessages() const {
    QStringList messages;
    const QStringList logs = QDir(native()).entryList({u"Tesvane*.log"_s}, QDir::Files);
    for (const QString& name : logs) {
        const QString text = DecodeAnsi(ReadAll(native(name)));
        for (const QString& line : text.split(u"\r\n"_s, Qt::SkipEmptyParts)) {
            const qsizetype head = line.indexOf(u'】');
            messages.append(head >= 0 ? line.mid(head + 1) : line);
        }
    }
    return messages;
}

QString LinkProcess::standardError() const {
    return QString::fromLocal8Bit(ReadAll(native(u"kv_orbline.stderr"_s)));
}

QString LinkProcess::diagnosticLog(const QString& code) const {
    return DecodeAnsi(ReadAll(native(u"KV_Orbline"_s + code + u".diag"_s)));
}

QStringList LinkProcess::deliveries() const {
    return QDir(native(u"data"_s)).entryList(QDir::Files, QDir::Name);
}

QString LinkProcess::readDelivery(const QString& name) const {
    return DecodeAnsi(ReadAll(native(u"data/"_s + name)));
}

QStringList LinkProcess::workFiles() const {
    return QDir(native(u"wk"_s)).entryList(QDir::Files | QDir::Hidden, QDir::Name);
}

QString LinkProcess::native(const QString& relative) const {
    return relative.isEmpty() ? dir_.path() : dir_.path() + u"/"_s + relative;
}

std::vector<QByteArray> TonometerBlocks(const QByteArray& transmission) {
    std::vector<QByteArray> blocks;
    QByteArray block;
    for (const char byte : transmission) {
        block.append(byte);
        if (byte != '\r') continue;
        const bool ends = block.startsWith('\x05') ||
                          (block.size() >= 2 && (block.at(block.size() - 2) == '\x03' ||
                                                 block.at(block.size() - 2) == '\x04'));
        if (ends) {
            blocks.push_back(block);
            block.clear();
        }
    }
    if (!block.isEmpty()) blocks.push_back(block);
    return blocks;
}

QByteArray ReadFixture(const QString& relative) {
    return ReadAll(QString::fromLocal8Bit(ORBLINE_FIXTURES_DIR) + u"/"_s + relative);
}

}  // namespace orbline::test
