#pragma once
// A fresh site for one test: its own temporary folder as AppPath, a fresh RunContext and
// form, and a fixed clock.

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

namespace orbline::test {

class TestSite {
  public:
    explicit TestSite(const char* fixedNow = "2025-04-16 09:30:15");
    ~TestSite();
    TestSite(const TestSite&) = delete;
    TestSite& operator=(const TestSite&) = delete;

    // The folder in the system's own notation ("\" between parts).
    QString path() const { return appPath_; }
    QString path(const QString& relative) const;
    // Plain POSIX path for Qt and the test's own checks.
    QString native(const QString& relative = QString()) const;

    void writeFile(const QString& relative, const QByteArray& bytes) const;
    QByteArray readFile(const QString& relative) const;
    bool exists(const QString& relative) const;

  private:
    QTemporaryDir dir_;
    QString appPath_;
};

void SetFixedNow(const char* text);

}  // namespace orbline::test
