// Placeholder until opening files, tempo and time signatures land.
#include "app/core/CProgramm.h"
#include "engine/CKLNCreator.h"

namespace lyrabo {

bool CProgramm::openMIDIFile(int16_t) { return false; }
std::string CProgramm::spurBezeichnung(int16_t) { return {}; }
void CProgramm::tempoScan() {}
void CProgramm::GetTimeSignatureFRMIntern() {}
void CProgramm::zeitSignaturAnzeige() {}
void CProgramm::MIDIFileSetsESVarsFrmIntern(int16_t) {}
bool CKLNCreator::openDialog_MIDIFile(int16_t) { return false; }

} // namespace lyrabo
