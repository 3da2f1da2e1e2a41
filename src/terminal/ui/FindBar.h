#pragma once

#include "terminal/ui/TextSearch.h"

#include <QTimer>
#include <QWidget>

#include <vector>

namespace orvo {

class TerminalView;
class TextField;
class TextLabel;

/// Finds text in one terminal's screen and history: marks every match, goes from one to the next, and follows
/// what the program writes meanwhile. Lies over the terminal's upper right corner while it is open.
class FindBar : public QWidget {
    Q_OBJECT

public:
    /// A child of `host`, which also holds the view; `view` outlives the bar.
    FindBar(TerminalView& view, QWidget* host);

    /// Takes the keys; begins with what is selected in one line.
    void open();
    /// Gives the keys back to the terminal.
    void close();
    int matchCount() const { return static_cast<int>(m_matches.size()); }
    /// Of the matches from the oldest on; -1 for none.
    int currentMatch() const { return m_current; }

Q_SIGNALS:
    void closed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    enum class Go { Older, Newer };

    void search();
    void searchAgain();
    void go(Go direction);
    void show(int match);
    void refreshCount();

    TerminalView& m_view;
    TextField* m_field;
    TextLabel* m_count;
    QTimer m_searchAgain;
    std::vector<TextMatch> m_matches;
    int m_current = -1;
};

}  // namespace orvo
