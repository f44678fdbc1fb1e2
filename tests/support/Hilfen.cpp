// Keeps the support library non-empty; the helpers themselves are header-only.
namespace lyrabo::test {
int testSupportVorhanden = 1;
}
