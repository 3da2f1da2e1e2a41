#pragma once

#include "appearance/controls/Sheet.h"
#include "platform/Dialogs.h"

#include <vector>

namespace orvo {

class OrvoButton;

/// A question in the middle of a window. Its first button stands outermost; the one that destroys is filled
/// in the danger colour, and then the way out has the focus.
class AlertSheet final : public Sheet {
    Q_OBJECT

public:
    AlertSheet(QWidget* window, const Alert& alert);

    /// Blocks, with a running event loop, until a button is chosen; the answer is its index. Escape, closing
    /// the window and its end count as the last button.
    int run();

Q_SIGNALS:
    void answered();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void answer(int index);

    std::vector<OrvoButton*> m_buttons;
    int m_default;
    int m_answer;
};

/// Puts `alert` to the person over `window`, which is brought to the front; without one, in a window of its
/// own. Blocks until answered. Main thread only.
int presentAlert(QWidget* window, const Alert& alert);

}  // namespace orvo
