#pragma once

#include <memory>
#include <string_view>

namespace orvo::bench {

/// libtsm set up as a console that embeds it does, with a scrollback of the same 2,000 lines.
class TsmReference {
public:
    TsmReference(int rows, int columns);
    ~TsmReference();
    TsmReference(const TsmReference&) = delete;
    TsmReference& operator=(const TsmReference&) = delete;

    void feed(std::string_view bytes);

private:
    struct Terminal;

    std::unique_ptr<Terminal> m_terminal;
};

}  // namespace orvo::bench
