#pragma once

#include <QWidget>

namespace orvo {

enum class Destination;

/// A page that has only its heading so far: what it is for, and nothing that pretends to work.
QWidget* makePlaceholderPage(Destination destination);

}  // namespace orvo
