#include "appearance/Theme.h"

namespace orvo {

const QList<ThemePreset>& ThemePreset::all() {
    static const QList<ThemePreset> presets = {
        {QStringLiteral("pelk"), Theme::tr("Orvo charcoal"), QStringLiteral("141413"),
         QStringLiteral("00D9FF"), Theme::tr("Dark charcoal & rich pelk blue")},
        {QStringLiteral("mirel"), Theme::tr("Mirel charcoal"), QStringLiteral("171719"),
         QStringLiteral("C6BAA9"), Theme::tr("Mirel Local AI’s full neutral palette")},
        {QStringLiteral("ocean"), Theme::tr("Deep ocean"), QStringLiteral("081322"), QStringLiteral("00E5D0"),
         Theme::tr("Navy & rich pelk")},
        {QStringLiteral("midnight"), Theme::tr("Midnight"), QStringLiteral("111221"),
         QStringLiteral("A797FF"), Theme::tr("Ink & soft violet")},
    };
    return presets;
}

}  // namespace orvo
