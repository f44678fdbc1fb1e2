#pragma once
// A fresh temporary folder per test, removed afterwards.
#include <filesystem>
#include <random>
#include <string>

namespace lyrabo::test {

class TestOrdner {
public:
    TestOrdner() {
        std::random_device rd;
        m_pfad = std::filesystem::temp_directory_path() / ("lyrabo_test_" + std::to_string(rd()) + std::to_string(rd()));
        std::filesystem::create_directories(m_pfad);
    }
    ~TestOrdner() {
        std::error_code ec;
        std::filesystem::permissions(m_pfad, std::filesystem::perms::owner_all, std::filesystem::perm_options::add, ec);
        std::filesystem::remove_all(m_pfad, ec);
    }
    TestOrdner(const TestOrdner&) = delete;
    TestOrdner& operator=(const TestOrdner&) = delete;
    const std::filesystem::path& pfad() const { return m_pfad; }
    std::filesystem::path operator/(const std::string& name) const { return m_pfad / name; }

private:
    std::filesystem::path m_pfad;
};

} // namespace lyrabo::test
