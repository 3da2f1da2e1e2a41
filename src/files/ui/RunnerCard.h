#pragma once

#include "appearance/controls/Card.h"

namespace orvo {

class TextField;
class Workspace;

/// A line for any command, run in the project.
class RunnerCard final : public Card {
    Q_OBJECT

public:
    explicit RunnerCard(Workspace& workspace, QWidget* parent = nullptr);

private:
    Workspace& m_workspace;
    TextField* m_command;
};

}  // namespace orvo
