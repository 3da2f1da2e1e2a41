#include "appearance/controls/typography.h"

#include <QFontDatabase>
#include <QStringList>

#include <cmath>

namespace orvo {
namespace {

struct TypeStep {
    int size;
    QFont::Weight weight;
    double spacing;
    int pitch;
    int paragraphPitch;
};

TypeStep stepOf(TypeRole role) {
    switch (role) {
        case TypeRole::Display:
            return {40, QFont::DemiBold, -1.2, 46, 46};
        case TypeRole::Title:
            return {28, QFont::DemiBold, -0.6, 34, 34};
        case TypeRole::Section:
            return {17, QFont::DemiBold, -0.2, 22, 22};
        case TypeRole::CardTitle:
            return {15, QFont::DemiBold, -0.1, 20, 20};
        case TypeRole::Body:
            return {13, QFont::Normal, 0, 18, 20};
        case TypeRole::Control:
            return {13, QFont::Medium, 0, 18, 20};
        case TypeRole::Name:
            return {13, QFont::DemiBold, 0, 18, 20};
        case TypeRole::Lead:
            return {15, QFont::Normal, 0, 22, 22};
        case TypeRole::Writing:
            return {14, QFont::Normal, 0, 20, 20};
        case TypeRole::SmallControl:
            return {12, QFont::Medium, 0, 16, 16};
        case TypeRole::Caption:
            return {11, QFont::Normal, 0, 16, 16};
        case TypeRole::Badge:
            return {11, QFont::Medium, 0, 16, 16};
        case TypeRole::Eyebrow:
            return {11, QFont::DemiBold, 0.8, 14, 14};
    }
    Q_UNREACHABLE();
}

}  // namespace

QFont fontOf(TypeRole role) {
    const TypeStep step = stepOf(role);
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    // Family names that are not installed fall through to the next.
    font.setFamilies({QStringLiteral("Inter"), font.family()});
    font.setPixelSize(step.size);
    font.setWeight(step.weight);
    if (step.spacing != 0) font.setLetterSpacing(QFont::AbsoluteSpacing, step.spacing);
    if (role == TypeRole::Eyebrow) font.setCapitalization(QFont::AllUppercase);
    return font;
}

int linePitch(TypeRole role) {
    return stepOf(role).pitch;
}
int paragraphPitch(TypeRole role) {
    return stepOf(role).paragraphPitch;
}

QFont monoFont(double pixelSize) {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setFamilies({QStringLiteral("JetBrains Mono"), font.family()});
    font.setStyleHint(QFont::Monospace);
    font.setFixedPitch(true);
    font.setPixelSize(static_cast<int>(std::lround(pixelSize)));
    return font;
}

QFont codeFont(double pixelSize) {
    QFont font = monoFont(pixelSize);
    // Ligatures are made in shaping, which Latin text does not need otherwise.
    font.setStyleStrategy(QFont::PreferNoShaping);
    return font;
}

}  // namespace orvo
