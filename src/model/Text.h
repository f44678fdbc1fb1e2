#pragma once
// Text encodings at the program's edges. Inside, all text is UTF-8; files and the exported texts
// are Windows-1252 as the users' systems expect.
#include <string>

namespace lyrabo {

bool istGueltigesUtf8(const std::string& s);
// Windows-1252 bytes to UTF-8.
std::string cp1252ZuUtf8(const std::string& bytes);
// UTF-8 to Windows-1252; characters the code page lacks become '?'.
std::string utf8ZuCp1252(const std::string& utf8);
// Bytes of a file's text as shown: kept when valid UTF-8, else read as Windows-1252.
std::string alsAnzeigeText(const std::string& bytes);

} // namespace lyrabo
