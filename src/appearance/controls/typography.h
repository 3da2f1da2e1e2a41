#pragma once

#include <QFont>

namespace orvo {

/// The places of the type scale. `Body` is what stock widgets use.
enum class TypeRole {
    Display,
    Title,
    Section,
    CardTitle,
    Body,
    /// Body in the weight of controls.
    Control,
    /// Body in the weight of names and primary buttons.
    Name,
    Lead,
    Writing,
    SmallControl,
    Caption,
    /// Caption in the weight of pills and badges.
    Badge,
    Eyebrow,
};

/// Inter where it is installed, else the system's interface font.
QFont fontOf(TypeRole role);
/// The distance from one line to the next, in dip; for body text within a paragraph see `paragraphPitch`.
int linePitch(TypeRole role);
/// The wider line distance of running text.
int paragraphPitch(TypeRole role);

/// JetBrains Mono where it is installed, else the system's fixed-width font.
QFont monoFont(double pixelSize);
/// The same for editors and previews: no two characters join into one glyph.
QFont codeFont(double pixelSize);

}  // namespace orvo
