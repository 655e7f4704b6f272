#pragma once
// The settings reader: AppPath\KV_Orbline.ini, in the ANSI code page, read as the Windows
// profile calls read it. Section and key names compare without regard to case; a value is cut
// at 255 bytes; blanks around it and one pair of enclosing quotes are removed. The path is
// built anew at each call, so the object holds no state.

#include <QString>

namespace orbline {

class AwIni {
  public:
    // The value, or default when the key (or the file, or the section) is missing.
    QString GetValue(const QString& section, const QString& key, const QString& defaultValue) const;
    // Writes the key, an empty value included. Nothing in the system calls it.
    bool WriteValue(const QString& section, const QString& key, const QString& value) const;

    static QString FilePath();
};

// The lookup itself, on the bytes of a settings file; exposed for tests.
QString ProfileString(const QByteArray& fileBytes, const QString& section, const QString& key,
                      const QString& defaultValue);

}  // namespace orbline
