#pragma once

#include "appearance/HexColor.h"

#include <QList>
#include <QObject>
#include <QString>

namespace orvo {

class Preferences;

/// A palette to start from.
struct ThemePreset {
    QString id;
    QString title;
    QString background;
    QString accent;
    QString subtitle;

    bool operator==(const ThemePreset&) const = default;
    /// In display order; the first is the default.
    static const QList<ThemePreset>& all();
};

/// A colour with opacity (0 to 1).
struct Rgba {
    Rgb rgb;
    double alpha = 1;

    bool operator==(const Rgba&) const = default;
};

/// The application's appearance: two colours and a text size, from which everything else is derived.
/// Main thread only. Every change is stored at once.
class Theme : public QObject {
    Q_OBJECT

public:
    /// `preferences` is null for a theme that keeps nothing; otherwise it outlives the theme.
    explicit Theme(Preferences* preferences, QObject* parent = nullptr);

    const QString& backgroundHex() const;
    const QString& accentHex() const;
    /// Terminal text size in points.
    double fontSize() const;
    const QString& presetID() const;

    void apply(const ThemePreset& preset);
    /// A colour of the person's own: the preset becomes "custom".
    void setBackgroundHex(const QString& hex);
    void setAccentHex(const QString& hex);
    void setFontSize(double points);

    bool isClaude() const;
    bool isMirel() const;
    bool isNeutral() const;

    Rgb bg() const;
    Rgb surface() const;
    Rgb sidebar() const;
    Rgba border() const;
    Rgb muted() const;
    Rgb text() const;
    Rgb accent() const;

Q_SIGNALS:
    void backgroundHexChanged();
    void accentHexChanged();
    void fontSizeChanged();
    void presetIDChanged();
};

}  // namespace orvo
