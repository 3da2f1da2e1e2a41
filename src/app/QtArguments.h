#pragma once

#include "platform/Result.h"

#include <QByteArrayList>

#include <vector>

namespace orvo {

/// The arguments that Qt starts with. Ours are read already, and what is set in the environment instead would
/// be inherited by the programs that are started from here. Outlives the application object.
class QtArguments {
public:
    QtArguments(const char* program, const QByteArrayList& options);
    QtArguments(const QtArguments&) = delete;
    QtArguments& operator=(const QtArguments&) = delete;

    int& count() { return m_count; }
    char** values() { return m_pointers.data(); }

private:
    QByteArrayList m_texts;
    std::vector<char*> m_pointers;
    int m_count = 0;
};

/// Qt's options for a window on the display that the environment names, or a sentence for the terminal when
/// there is none.
Result<QByteArrayList> displayOptions();

}  // namespace orvo
