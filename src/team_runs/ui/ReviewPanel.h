#pragma once

#include "appearance/controls/Card.h"
#include "appearance/controls/Well.h"

class QProgressBar;
class QStackedWidget;

namespace orvo {

class ChangeList;
class CopyReview;
class OrvoButton;
class Paragraph;
class TextLabel;
class TextViewer;

/// The review area: the changed files of a copy, and beside them the file that is compared.
class ReviewPanel final : public Card {
    Q_OBJECT

public:
    explicit ReviewPanel(CopyReview& review, QWidget* parent = nullptr);

private:
    QWidget* makeHeader();
    QWidget* makeBody();
    QWidget* makePane(const QString& title, TextViewer*& viewer, Well::Edge edge);
    void refreshHeader();
    void refreshBody();
    void refreshProgress();
    void refreshComparison();

    CopyReview& m_review;
    TextLabel* m_count = nullptr;
    OrvoButton* m_selectAll = nullptr;
    OrvoButton* m_apply = nullptr;
    QStackedWidget* m_body = nullptr;
    QWidget* m_reading = nullptr;
    QProgressBar* m_progress = nullptr;
    QWidget* m_lists = nullptr;
    QStackedWidget* m_compare = nullptr;
    QWidget* m_hint = nullptr;
    QWidget* m_panes = nullptr;
    TextViewer* m_before = nullptr;
    TextViewer* m_after = nullptr;
};

}  // namespace orvo
