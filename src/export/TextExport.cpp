// Placeholder until the text exports land.
#include "engine/CKLNCreator.h"

namespace lyrabo {

std::string CKLNCreator::getKlangNotenString() { return {}; }
std::string CKLNCreator::getHarfeEventString() { return {}; }

} // namespace lyrabo
