#pragma once

#include <QWidget>

namespace orvo {

class Theme;

/// A piece of the workspace in the theme as it is now. The theme outlives it.
class ThemePreview final : public QWidget {
    Q_OBJECT

public:
    explicit ThemePreview(const Theme& theme, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme& m_theme;
};

}  // namespace orvo
