// Placeholder until the export run lands.
#include "app/core/CProgramm.h"

namespace lyrabo {

void CProgramm::HarfeExportLauf(int16_t, bool, bool) {}
void CProgramm::neuBerechnen() {}

} // namespace lyrabo
