// Hands every file of the folders it is given to a fuzzer's reader: the corpus as a plain test, with any
// compiler. Each name is told before its file is read, so that a fault shows which file it is.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <unistd.h>

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace {

std::string bytesOf(const std::filesystem::path &name)
{
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void replay(const std::string &text)
{
    // A copy of just this length: the sanitizers see a reader that looks behind the end.
    const std::vector<std::uint8_t> bytes(text.begin(), text.end());
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

} // namespace

int main(int argc, char **argv)
{
    LLVMFuzzerInitialize(&argc, &argv);
    std::vector<std::filesystem::path> names;
    for (int i = 1; i < argc; ++i)
        for (const auto &entry : std::filesystem::directory_iterator(argv[i]))
            names.push_back(entry.path());
    std::ranges::sort(names);
    replay("");
    for (const auto &name : names) {
        dprintf(STDERR_FILENO, "%s\n", name.c_str());
        replay(bytesOf(name));
    }
    dprintf(STDERR_FILENO, "%zu inputs replayed\n", names.size());
    return names.empty() ? 1 : 0;
}
