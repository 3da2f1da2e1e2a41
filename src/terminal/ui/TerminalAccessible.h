#pragma once

#include "terminal/ui/TerminalText.h"

#include <QAccessibleWidget>
#include <QPointer>

#include <optional>

namespace orvo {

class TerminalSession;
class TerminalView;

/// A terminal as assistive technology sees it: role terminal, with the whole plain text of its screen.
class TerminalAccessible : public QAccessibleWidget, public QAccessibleTextInterface {
public:
    explicit TerminalAccessible(TerminalView* view);

    /// Whether somebody listens to what changes in a view. A screen reader speaks what happens at the focus;
    /// for the rest it asks.
    static bool isListenedTo(const TerminalView& view);
    /// Tells listeners what has changed in a view since the last call.
    static void announceChanges(TerminalView& view);

    void* interface_cast(QAccessible::InterfaceType type) override;
    QAccessible::State state() const override;

    void selection(int selectionIndex, int* startOffset, int* endOffset) const override;
    int selectionCount() const override { return 0; }
    void addSelection(int, int) override {}
    void removeSelection(int) override {}
    void setSelection(int, int, int) override {}
    int cursorPosition() const override;
    void setCursorPosition(int) override {}
    QString text(QAccessible::Text kind) const override;
    QString text(int startOffset, int endOffset) const override;
    int characterCount() const override;
    QRect characterRect(int offset) const override;
    int offsetAtPoint(const QPoint& point) const override;
    void scrollToSubstring(int startIndex, int endIndex) override;
    QString attributes(int offset, int* startOffset, int* endOffset) const override;

private:
    TerminalView& view() const;
    /// Made anew after each batch of output, not for each question.
    const TerminalText& content() const;
    /// The row of the view that shows a line of the history or screen; may lie outside of it.
    int rowOf(int line) const;
    void announce();

    struct Version {
        QPointer<TerminalSession> session;
        int revision = -1;
        int rows = 0;
        int columns = 0;
    };
    mutable Version m_version;
    mutable TerminalText m_content;
    std::optional<TerminalText> m_announced;
};

/// Makes Qt describe every terminal view by `TerminalAccessible`. Later calls do nothing.
void installTerminalAccessibility();

}  // namespace orvo
