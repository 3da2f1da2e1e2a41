#pragma once

#include "appearance/controls/Sheet.h"

namespace orvo {

class OrvoButton;

/// The recorded terminal text of one copy, over the window.
class OutputSheet final : public Sheet {
    Q_OBJECT

public:
    OutputSheet(const QString& output, QWidget* window);

    void present();

private:
    OrvoButton* m_done;
};

}  // namespace orvo
