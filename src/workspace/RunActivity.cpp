#include "workspace/RunActivity.h"

#include <QCoreApplication>

namespace orvo {

void RunActivity::setActive(bool on) {
    if (on == active()) return;
    m_assertion =
        on ? m_inhibitor.hold(QCoreApplication::translate("orvo::RunActivity", "Orvo is running a task"))
           : nullptr;
}

}  // namespace orvo
