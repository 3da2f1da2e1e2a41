#include "appearance/Theme.h"

#include "platform/Preferences.h"

namespace orvo {
namespace {

constexpr double defaultFontSize = 12;

Rgb fromHex(const QString& hex) {
    return colorFromHex(hex.toStdString());
}
QString normalized(const QString& hex) {
    return QString::fromStdString(hexOf(fromHex(hex)));
}

}  // namespace

Theme::Theme(Preferences* preferences, QObject* parent) : QObject(parent), m_preferences(preferences) {
    const ThemePreset& preset = ThemePreset::all().first();
    m_choice = {preset.background, preset.accent, preset.id, defaultFontSize};
    if (m_preferences) load();
}

void Theme::load() {
    const Choice defaults = m_choice;
    m_choice.background = m_preferences->value(preference::background).value_or(defaults.background);
    m_choice.accent = m_preferences->value(preference::accent).value_or(defaults.accent);
    m_choice.preset = m_preferences->value(preference::preset).value_or(defaults.preset);
    const double fontSize = m_preferences->value(preference::terminalFont).value_or(0);
    if (fontSize > 0) m_choice.fontSize = fontSize;

    // Every installation is moved to the default palette once; what is chosen after that stays.
    if (!m_preferences->value(preference::pelkAccentApplied).value_or(false)) {
        m_choice.background = defaults.background;
        m_choice.accent = defaults.accent;
        m_choice.preset = defaults.preset;
        (void)m_preferences->setValue(preference::background, m_choice.background);
        (void)m_preferences->setValue(preference::accent, m_choice.accent);
        (void)m_preferences->setValue(preference::preset, m_choice.preset);
        (void)m_preferences->setValue(preference::pelkAccentApplied, true);
    }
}

// A palette that cannot be stored still applies to this run, so the result is of no consequence here.
void Theme::save() {
    if (!m_preferences) return;
    (void)m_preferences->setValue(preference::background, m_choice.background);
    (void)m_preferences->setValue(preference::accent, m_choice.accent);
    (void)m_preferences->setValue(preference::terminalFont, m_choice.fontSize);
    (void)m_preferences->setValue(preference::preset, m_choice.preset);
}

void Theme::change(Choice next) {
    const Choice old = std::exchange(m_choice, std::move(next));
    save();
    if (old.background != m_choice.background) Q_EMIT backgroundHexChanged();
    if (old.accent != m_choice.accent) Q_EMIT accentHexChanged();
    if (old.fontSize != m_choice.fontSize) Q_EMIT fontSizeChanged();
    if (old.preset != m_choice.preset) Q_EMIT presetIDChanged();
}

const QString& Theme::backgroundHex() const {
    return m_choice.background;
}
const QString& Theme::accentHex() const {
    return m_choice.accent;
}
double Theme::fontSize() const {
    return m_choice.fontSize;
}
const QString& Theme::presetID() const {
    return m_choice.preset;
}

void Theme::apply(const ThemePreset& preset) {
    change({preset.background, preset.accent, preset.id, m_choice.fontSize});
}

void Theme::setBackgroundHex(const QString& hex) {
    change({normalized(hex), m_choice.accent, QStringLiteral("custom"), m_choice.fontSize});
}

void Theme::setAccentHex(const QString& hex) {
    change({m_choice.background, normalized(hex), QStringLiteral("custom"), m_choice.fontSize});
}

void Theme::setFontSize(double points) {
    Q_ASSERT(points > 0);
    change({m_choice.background, m_choice.accent, m_choice.preset, points});
}

bool Theme::isClaude() const {
    return m_choice.background == QLatin1String("141413");
}
bool Theme::isMirel() const {
    return m_choice.background == QLatin1String("171719");
}
bool Theme::isNeutral() const {
    return isClaude() || isMirel();
}

Rgb Theme::bg() const {
    return fromHex(m_choice.background);
}

Rgb Theme::surface() const {
    if (isClaude()) return colorFromHex("212120");
    if (isMirel()) return colorFromHex("212124");
    return mix(bg(), {255, 255, 255}, 0.055);
}

Rgb Theme::sidebar() const {
    if (isClaude()) return colorFromHex("111110");
    if (isMirel()) return colorFromHex("121214");
    return mix(bg(), {0, 0, 0}, 0.13);
}

Rgba Theme::border() const {
    if (isClaude()) return {colorFromHex("3B3B35")};
    if (isMirel()) return {colorFromHex("37363A")};
    return {{255, 255, 255}, 0.085};
}

Rgb Theme::muted() const {
    if (isClaude()) return colorFromHex("A8A69D");
    if (isMirel()) return colorFromHex("B0AAA1");
    return colorFromHex("8496AB");
}

Rgb Theme::text() const {
    if (isClaude()) return colorFromHex("ECEBE6");
    if (isMirel()) return colorFromHex("F1EEE8");
    return colorFromHex("E8F0F8");
}

Rgb Theme::accent() const {
    return fromHex(m_choice.accent);
}

}  // namespace orvo
