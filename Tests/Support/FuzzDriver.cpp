// Runs a fuzz target without libFuzzer: on every file of the folders named on the command line, and on a
// bounded number of damaged forms of them, the same ones in each run.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace {

constexpr int damagedForms = 30'000;
constexpr std::size_t longestForm = 65'536;
constexpr unsigned seed = 20'010'101;

using Bytes = std::string;

class Damage
{
public:
    explicit Damage(const std::vector<Bytes> &corpus)
        : m_corpus(corpus)
    {
    }

    [[nodiscard]] Bytes next()
    {
        auto form = m_corpus[below(m_corpus.size())];
        for (auto times = 1 + below(4); times > 0; --times)
            damage(form);
        form.resize(std::min(form.size(), longestForm));
        return form;
    }

private:
    std::size_t below(std::size_t end) { return end == 0 ? 0 : m_random() % end; }

    void damage(Bytes &form)
    {
        // Characters that mean something in most formats, besides any at all.
        static constexpr std::string_view telling = "[]{}\",:\\/0123456789-+.eEtfnu \n\0\x7f\xc3\xff";
        const auto at = below(form.size() + 1);
        const auto length = std::min(below(16), form.size() - at);
        switch (below(7)) {
        case 0:
            form.erase(at, length);
            break;
        case 1:
            form.insert(at, 1, static_cast<char>(m_random()));
            break;
        case 2:
            form.insert(at, 1, telling[below(telling.size())]);
            break;
        case 3:
            if (at < form.size())
                form[at] = telling[below(telling.size())];
            break;
        case 4:
            if (at < form.size())
                form[at] = static_cast<char>(form[at] ^ (1U << below(8)));
            break;
        case 5:
            form.insert(below(form.size() + 1), form.substr(at, length));
            break;
        default: {
            const auto &other = m_corpus[below(m_corpus.size())];
            form.replace(at, std::string::npos, other, below(other.size() + 1), std::string::npos);
            break;
        }
        }
    }

    const std::vector<Bytes> &m_corpus;
    std::mt19937 m_random{ seed };
};

void run(const Bytes &form)
{
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(form.data()), form.size());
}

} // namespace

int main(int argc, char **argv)
{
    std::vector<std::filesystem::path> files;
    for (int i = 1; i < argc; ++i)
        for (const auto &entry : std::filesystem::directory_iterator(argv[i]))
            files.push_back(entry.path());
    std::ranges::sort(files);
    std::vector<Bytes> corpus{ Bytes() };
    for (const auto &file : files) {
        std::ifstream stream(file, std::ios::binary);
        corpus.emplace_back(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
    }
    if (corpus.size() < 3) {
        std::fputs("no corpus\n", stderr);
        return 1;
    }
    std::ranges::for_each(corpus, run);
    Damage damage(corpus);
    for (int i = 0; i < damagedForms; ++i)
        run(damage.next());
    std::printf("%zu files and %d damaged forms\n", corpus.size(), damagedForms);
    return 0;
}
