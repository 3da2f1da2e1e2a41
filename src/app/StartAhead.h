#pragma once

#include <future>

namespace orvo {

/// Does on another core what the first picture needs beside the connection to the display: reads the settings
/// and lists of fonts, and computes the shapes of the brand. Begins when it is made, before the application
/// object; whoever needs one of these earlier waits for it.
class StartAhead {
public:
    StartAhead();

private:
    std::future<void> m_done;
};

/// Lists the families of fonts on another core, which needs the application object: it is made after that,
/// and its end, which waits, comes before that object's.
class FontFamiliesAhead {
public:
    FontFamiliesAhead();

private:
    std::future<void> m_done;
};

}  // namespace orvo
