#pragma once

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace orvo::fuzz {

inline void require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

/// The first bytes of an input say what is done with the rest of it.
class FuzzInput {
public:
    FuzzInput(const unsigned char* data, std::size_t size)
        : m_rest(reinterpret_cast<const char*>(data), size) {}

    /// 0 when there is nothing left.
    unsigned next() {
        if (m_rest.empty()) return 0;
        const auto byte = static_cast<unsigned char>(m_rest.front());
        m_rest.remove_prefix(1);
        return byte;
    }
    /// From `first` to `last`, both included.
    int between(int first, int last) {
        return first + static_cast<int>(next() % static_cast<unsigned>(last - first + 1));
    }
    /// What comes before the next `stop`, which is taken too.
    std::string_view until(char stop) {
        const std::string_view part = m_rest.substr(0, m_rest.find(stop));
        m_rest.remove_prefix(part.size() < m_rest.size() ? part.size() + 1 : part.size());
        return part;
    }
    std::string_view rest() const { return m_rest; }
    bool empty() const { return m_rest.empty(); }

private:
    std::string_view m_rest;
};

}  // namespace orvo::fuzz
