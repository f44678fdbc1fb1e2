// Placeholder until cutting the template files lands.
#include "export/CWDBCreator.h"

namespace lyrabo {

void CWDBCreator::writeINIDateien25() {}
void CWDBCreator::writeINIDateien37() {}

} // namespace lyrabo
