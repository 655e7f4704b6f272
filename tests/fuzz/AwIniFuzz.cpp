// The settings reader on any file: the keys the program reads, and a section and key taken
// from the input's first line. A value is what at most 255 bytes of the file decode to (a lone
// lead byte becomes a character of two bytes, so it is counted in characters).

#include "FuzzInput.h"
#include "app/AwIni.h"

using namespace Qt::StringLiterals;
using namespace orbline;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    const QStringList first = DecodeAnsi(bytes.left(bytes.indexOf('\n'))).split(u'=');
    const std::pair<QString, QString> keys[] = {
        {u"User"_s, u"JyusinDataPath"_s}, {u"User"_s, u"DbConnect"_s},
        {u"TNMC"_s, u"Port"_s},           {u"tnmc"_s, u"BAUDRATE"_s},
        {u"TNMC"_s, u"Device"_s},         {first.value(0), first.value(1)},
    };
    for (const auto& [section, key] : keys) {
        const QString value = ProfileString(bytes, section, key, u"none"_s);
        fuzz::Require(value.size() <= 255, "a value is cut at 255 bytes");
    }
    return 0;
}
