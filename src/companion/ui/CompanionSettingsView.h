#pragma once

#include <QWidget>

class QSlider;

namespace orvo {

class CompanionModel;
class PetTile;
class TextLabel;
class Workspace;

/// The companion's page: which pet, how large, whether it moves and where it is. The references outlive it.
class CompanionSettingsView final : public QWidget {
    Q_OBJECT

public:
    CompanionSettingsView(CompanionModel& model, Workspace& workspace, QWidget* parent = nullptr);

private:
    QWidget* makeBack();
    QWidget* makePreview();
    QWidget* makeSettings();
    QWidget* makeShown();
    QWidget* makePets();
    QWidget* makePetButtons();
    QWidget* makeMotion();
    QWidget* makeSize();
    QWidget* makeExplanations();
    void refreshPet();
    void refreshScale();

    CompanionModel& m_model;
    Workspace& m_workspace;
    TextLabel* m_name = nullptr;
    PetTile* m_defaultPet = nullptr;
    PetTile* m_customPet = nullptr;
    QSlider* m_slider = nullptr;
    TextLabel* m_percent = nullptr;
};

}  // namespace orvo
