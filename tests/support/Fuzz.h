#pragma once
// The random choices of the fuzz loops. A fixed seed keeps a failure reproducible;
// KV_ORBLINE_FUZZ_ROUNDS runs longer.

#include <QtGlobal>

#include <cstdlib>
#include <random>
#include <string_view>

namespace orbline::test {

struct Fuzz {
    static int Rounds(int standard) {
        const char* rounds = std::getenv("KV_ORBLINE_FUZZ_ROUNDS");
        return rounds != nullptr ? std::atoi(rounds) : standard;
    }
    // 0 to below - 1; 0 when below is not positive.
    int operator()(qsizetype below) { return below > 0 ? int(random() % quint64(below)) : 0; }
    // Half of the time one of the bytes a reader looks for, else any byte.
    char byte(std::string_view marked) {
        return (*this)(2) != 0 ? marked[std::size_t((*this)(qsizetype(marked.size())))]
                               : char((*this)(256));
    }
    // Each character replaced, one time in oneIn.
    void scatter(auto& text, int oneIn, auto make) {
        for (auto& c : text)
            if ((*this)(oneIn) == 0) c = make();
    }
    // count changes at random places: a character inserted or replaced, or one removed.
    void edit(auto& text, qsizetype count, auto make) {
        for (; count > 0; --count) {
            const qsizetype at = (*this)(text.size() + 1), op = at == text.size() ? 0 : (*this)(3);
            if (op == 0) text.insert(at, make());
            if (op == 1) text[at] = make();
            if (op == 2) text.remove(at, 1);
        }
    }
    std::mt19937 random;
};

}  // namespace orbline::test
