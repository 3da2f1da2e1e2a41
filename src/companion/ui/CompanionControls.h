#pragma once

#include "appearance/controls/Card.h"

class QMenu;

namespace orvo {

class CompanionModel;
class OrvoButton;
class Paragraph;
class TaskEditor;

/// The quick draft beside the pet: a draft to write or to dictate, reading aloud, and the way of the draft
/// into the workspace. The model outlives it.
class CompanionControls final : public Card {
    Q_OBJECT

public:
    static constexpr QSize size{340, 394};

    explicit CompanionControls(CompanionModel& model, QWidget* parent = nullptr);

    /// The keyboard into the draft.
    void focusDraft();

Q_SIGNALS:
    void closeRequested();

protected:
    bool focusNextPrevChild(bool next) override;

private:
    QWidget* makeHeader();
    QWidget* makeDraft();
    QWidget* makeVoiceRow();
    QWidget* makeFooter();
    QMenu* makeReadingMenu();
    void refreshDraft();
    void refreshMicrophone();
    void refreshReading();
    void refreshMessage();

    CompanionModel& m_model;
    TaskEditor* m_draft = nullptr;
    OrvoButton* m_microphone = nullptr;
    OrvoButton* m_reading = nullptr;
    Paragraph* m_message = nullptr;
};

}  // namespace orvo
