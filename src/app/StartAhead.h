#pragma once

#include <future>

namespace orvo {

/// Does on another core what the first picture needs beside the connection to the display: reads the settings
/// and lists of fonts, and computes the shapes of the brand. Begins when it is made, before the application
/// object; whoever needs one of these earlier waits for it.
class StartAhead {
public:
    StartAhead();

    /// Goes on with what needs the application object: the families of fonts. The result waits for its end
    /// when it is destroyed, which must be before the application object is.
    [[nodiscard]] static std::future<void> listFontFamilies();

private:
    std::future<void> m_done;
};

}  // namespace orvo
