#include "orte/OrteQt.h"

#include <QFile>
#include <QStandardPaths>

namespace lyrabo {

std::filesystem::path konfigurationsOrdner() {
    // The generic location needs no application name, so the command line can ask it too.
    const QString basis = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    if (basis.isEmpty()) return {};
#ifdef _WIN32
    return std::filesystem::path(basis.toStdWString()) / "lyrabo";
#else
    return std::filesystem::path(QFile::encodeName(basis).toStdString()) / "lyrabo";
#endif
}

ProgrammOrte orteDesProgramms(const std::filesystem::path& programm) {
    return orteBestimmen(programm, konfigurationsOrdner());
}

} // namespace lyrabo
