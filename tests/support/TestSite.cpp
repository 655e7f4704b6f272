#include "support/TestSite.h"

#include "common/Form.h"
#include "common/RunContext.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstdlib>

using namespace Qt::StringLiterals;

namespace orbline::test {

void SetFixedNow(const char* text) {
    if (text == nullptr)
        ::unsetenv("KV_ORBLINE_NOW");
    else
        ::setenv("KV_ORBLINE_NOW", text, 1);
}

TestSite::TestSite(const char* fixedNow) {
    ResetRunContext();
    ResetForm();
    SetFixedNow(fixedNow);
    appPath_ = dir_.path();
    appPath_.replace(u'/', u'\\');
    Ctx().AppPath = appPath_;
    Ctx().InstrumentCode = u"2620"_s;
}

TestSite::~TestSite() {
    SetFixedNow(nullptr);
}

QString TestSite::path(const QString& relative) const {
    return appPath_ + u"\\"_s + QString(relative).replace(u'/', u'\\');
}

QString TestSite::native(const QString& relative) const {
    return relative.isEmpty() ? dir_.path() : dir_.path() + u"/"_s + relative;
}

void TestSite::writeFile(const QString& relative, const QByteArray& bytes) const {
    const QString file = native(relative);
    QDir().mkpath(QFileInfo(file).path());
    QFile f(file);
    if (f.open(QIODevice::WriteOnly | QIODevice::Truncate)) f.write(bytes);
}

QByteArray TestSite::readFile(const QString& relative) const {
    QFile f(native(relative));
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

bool TestSite::exists(const QString& relative) const {
    return QFileInfo::exists(native(relative));
}

}  // namespace orbline::test
