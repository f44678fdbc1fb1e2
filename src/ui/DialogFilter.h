#pragma once
// The program's file filters for Qt's file dialogs.
#include <QString>

#include <string>

namespace lyrabo {

// "desc|pattern|desc|pattern" as the program writes its filters, in the form Qt's dialogs take.
QString dialogFilterFuerQt(const std::string& filter);

} // namespace lyrabo
