#pragma once
// The isolated site of a replay: a temporary folder with the site's settings, every folder the
// program writes into turned into one of its own, and an order store. Nothing of the real site
// is written; its settings file and order store are only read.

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <optional>

namespace orbline::replay {

class ReplaySite {
  public:
    ReplaySite();
    bool valid() const { return dir_.isValid(); }
    // AppPath in the system's notation ("\" between parts), as the command line gives it.
    QString appPath() const;
    QString native(const QString& relative) const;

    // Copies the settings file (or starts an empty one) and points the work, delivery, chart
    // and order folders, the order store and the device of the instrument's section at this
    // site. False with a reason when the file cannot be read or written.
    bool writeSettings(const QString& iniFile, const QString& prefix, const QString& device,
                       QString* error);
    // A copy of an SQLite order store, or an empty one.
    bool makeOrderStore(const QString& ordersFile, QString* error);

    // Copies what was delivered into `outDir` (charts into outDir/chart, the site's logs into
    // outDir/log) and returns the result files written. A record that names the chart by
    // this site's chart folder names it by the real site's folder, as the running system did.
    std::optional<QStringList> collect(const QString& outDir, QString* error) const;

  private:
    QTemporaryDir dir_;
    QString configuredChartFolder_;
};

}  // namespace orbline::replay
