// Placeholder until the database writer lands.
#include "export/CWDBCreator.h"

namespace lyrabo {

CWDBCreator::CWDBCreator(CProgramm& programm) : m_programm(programm) {}
void CWDBCreator::saveDialog_WDB() {}
void CWDBCreator::write_WDB(const std::string&) {}
void CWDBCreator::write_ExportColl() {}

} // namespace lyrabo
