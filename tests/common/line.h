// A command line of a test.
#pragma once

#include <iterator>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace trelm {

/// Words that can be handed over as argc and argv.
struct Line {
    std::vector<std::string> words;
    std::vector<char *> pointers;

    explicit Line(std::vector<std::string> line) : words(std::move(line))
    {
        for (std::string &word : words)
            pointers.push_back(word.data());
        pointers.push_back(nullptr);
    }
    /// Words that stand apart by blanks, behind the name of the program.
    Line(const std::string &program, const std::string &options) : Line(wordsOf(program, options)) {}
    Line(const Line &) = delete;
    Line &operator=(const Line &) = delete;
    [[nodiscard]] int argc() const { return static_cast<int>(words.size()); }
    char **argv() { return pointers.data(); }

  private:
    static std::vector<std::string> wordsOf(const std::string &program, const std::string &options)
    {
        std::istringstream in(options);
        std::vector<std::string> words = {program};
        words.insert(words.end(), std::istream_iterator<std::string>(in), {});
        return words;
    }
};

} // namespace trelm
