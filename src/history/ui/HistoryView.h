#pragma once

#include <QUuid>
#include <QWidget>

#include <optional>

class QBoxLayout;
class QScrollArea;

namespace orvo {

class Card;
class ElidedLabel;
class HistoryRow;
class IconTile;
class OrvoButton;
class TextField;
class TextViewer;
class Workspace;
struct HistoryEntry;

/// The finished sessions that are kept: a list to search in, and the text of one of them.
class HistoryView final : public QWidget {
    Q_OBJECT

public:
    /// The workspace outlives the page.
    explicit HistoryView(Workspace& workspace, QWidget* parent = nullptr);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    using Row = std::pair<QUuid, HistoryRow*>;

    QWidget* makeList();
    QWidget* makeDetail();
    QWidget* makeDetailHeader();
    /// The session being read: the chosen one while it is there, else the newest.
    const HistoryEntry* shownEntry() const;
    bool isListed(const HistoryEntry& entry) const;
    QString connectorName(const HistoryEntry& entry) const;
    void refreshEntries();
    void refreshRows();
    /// The row at the upper edge of a list that is scrolled down; null at its top.
    const QWidget* firstRowInSight() const;
    /// Scrolls by as much as the row has moved since it was at `before`.
    void keepInSight(const QWidget& row, int before);
    void refreshDetail();
    void clearHistory();
    void exportShown();
    void openFolder();

    Workspace& m_workspace;
    std::optional<QUuid> m_selected;
    OrvoButton* m_clear = nullptr;
    QWidget* m_empty = nullptr;
    QWidget* m_columns = nullptr;
    Card* m_listCard = nullptr;
    TextField* m_query = nullptr;
    QBoxLayout* m_rows = nullptr;
    QWidget* m_nothingFound = nullptr;
    QScrollArea* m_list = nullptr;
    QList<Row> m_rowOf;
    IconTile* m_tile = nullptr;
    ElidedLabel* m_title = nullptr;
    ElidedLabel* m_details = nullptr;
    TextViewer* m_output = nullptr;
};

}  // namespace orvo
