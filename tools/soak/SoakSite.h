#pragma once
// The soak's site: one folder as AppPath of all twelve processes, with one settings file, one
// work and one delivery folder, the order folders and the order store they all share.

#include <QString>
#include <QStringList>

#include <map>
#include <optional>

namespace orbline::soak {

struct SoakSite {
    QString root;       // plain path
    QString pgAddress;  // a PostgreSQL database to hold the store; empty: the SQLite file

    QString native(const QString& relative) const { return root + u'/' + relative; }
    // The folder in the system's own notation, as the command line carries it.
    QString appPath() const;
    // Where an instrument's simulator puts the link to its pseudo-terminal.
    QString device(const QString& code) const;
    QStringList orderFolders() const;
};

// The folders, the settings file with a section for each instrument, and an empty store.
bool MakeSite(const SoakSite& site, QString* error);

// Rows of T_ORDER for each instrument code; nothing when the store cannot be read.
std::optional<std::map<QString, int>> RowsByInstrument(const SoakSite& site, QString* error);

}  // namespace orbline::soak
