#include "files/ui/FileList.h"

#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/lineText.h"
#include "appearance/controls/painting.h"
#include "appearance/controls/symbols.h"
#include "appearance/controls/typography.h"
#include "platform/observe.h"

#include <QKeyEvent>
#include <QLocale>
#include <QPainter>
#include <QStyledItemDelegate>

#include <algorithm>

namespace orvo {
namespace {

constexpr int rowHeight = 28;
constexpr int iconSize = 16;
constexpr int iconGap = 10;
// The card's padding, within which the list has its own.
constexpr int inset = 12;

class FileDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const override {
        return {120, rowHeight};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const Roles& roles = rolesOf(option.widget);
        const QRect row = option.rect.adjusted(inset, 0, -inset, 0);
        const bool isOpen = index.data(FileModel::IsOpenRole).toBool();
        if (isOpen)
            fillRounded(*painter, row, 8, toQColor(roles.selected));
        else if (option.state.testFlag(QStyle::State_MouseOver))
            fillRounded(*painter, row, 8, toQColor(roles.hover));
        if (option.state.testFlag(QStyle::State_HasFocus))
            strokeRing(*painter, row, 8, toQColor(roles.accent));

        const bool isFolder = index.data(FileModel::IsFolderRole).toBool();
        QRect room = row.adjusted(FileList::rowPadding, 0, -FileList::rowPadding, 0);
        paintSymbol(*painter, QRectF(room.left(), room.top(), iconSize, room.height()),
                    isFolder ? QStringLiteral("folder") : QStringLiteral("doc.text"),
                    toQColor(isOpen ? roles.accent : roles.muted), iconSize);
        room.setLeft(room.left() + iconSize + iconGap);
        painter->setFont(fontOf(TypeRole::Body));
        painter->setPen(toQColor(roles.text));
        paintText(*painter, room, Qt::AlignVCenter, index.data().toString(), Qt::ElideMiddle);
    }
};

}  // namespace

FileModel::FileModel(ProjectFiles& files, QObject* parent) : QAbstractListModel(parent), m_files(files) {
    observe(files, {&ProjectFiles::filesChanged, &ProjectFiles::searchChanged}, this,
            [this] { refreshRows(); });
    observe(files, {&ProjectFiles::selectedFileChanged}, this, [this] { refreshOpenFile(); });
}

int FileModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

QVariant FileModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= m_rows.size()) return {};
    const FileEntry& entry = m_rows[index.row()];
    switch (role) {
        case Qt::DisplayRole:
            // A line feed in a name must not start a second line.
            return entry.url.displayName().replace(u'\n', u'␊');
        case Qt::ToolTipRole:
            return plainToolTip(entry.url.displayName());
        case IsFolderRole:
            return entry.isDirectory;
        case IsOpenRole:
            return m_files.selectedFile() == entry.url;
        default:
            return {};
    }
}

// Rows that stay are not touched, so that the list keeps its place while files come and go on the disk.
void FileModel::refreshRows() {
    QList<FileEntry> rows = m_files.files();
    if (const QString& search = m_files.search(); !search.isEmpty()) {
        const QLocale locale;
        const QString wanted = locale.toLower(search);
        rows.removeIf([&](const FileEntry& entry) {
            return !locale.toLower(entry.url.displayName()).contains(wanted);
        });
    }
    const auto [oldEnd, newEnd] = std::ranges::mismatch(m_rows, rows);
    const auto same = static_cast<int>(oldEnd - m_rows.begin());
    const auto tail = std::ranges::mismatch(
        std::ranges::subrange(std::reverse_iterator(m_rows.end()), std::reverse_iterator(oldEnd)),
        std::ranges::subrange(std::reverse_iterator(rows.end()), std::reverse_iterator(newEnd)));
    const auto oldCount = static_cast<int>(tail.in1.base() - oldEnd);
    const auto newCount = static_cast<int>(tail.in2.base() - newEnd);
    if (oldCount > 0) {
        beginRemoveRows({}, same, same + oldCount - 1);
        m_rows.remove(same, oldCount);
        endRemoveRows();
    }
    if (newCount > 0) {
        beginInsertRows({}, same, same + newCount - 1);
        m_rows = std::move(rows);
        endInsertRows();
    }
}

void FileModel::refreshOpenFile() {
    if (!m_rows.isEmpty()) Q_EMIT dataChanged(index(0), index(rowCount() - 1), {IsOpenRole});
}

FileList::FileList(ProjectFiles& files, QWidget* parent)
    : RowList(parent), m_files(files), m_model(new FileModel(files, this)) {
    setAccessibleName(tr("Files"));
    setModel(m_model);
    setItemDelegate(new FileDelegate(this));
    setUniformItemSizes(true);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFrameShape(QFrame::NoFrame);
    setMouseTracking(true);
    setDragEnabled(false);
    setViewportMargins(0, 0, 0, padding);
    viewport()->setAutoFillBackground(false);
    connect(this, &QListView::clicked, this, &FileList::open);
}

void FileList::open(const QModelIndex& row) {
    if (!row.isValid()) return;
    // A copy: opening a folder changes the rows.
    const FileEntry entry = m_model->entry(row.row());
    m_files.openFile(entry);
    if (entry.isDirectory && m_model->rowCount() > 0) {
        setCurrentIndex(m_model->index(0, 0));
        scrollToTop();
    }
}

void FileList::pressRow(int row) {
    const QModelIndex index = m_model->index(row);
    setCurrentIndex(index);
    open(index);
}

void FileList::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        open(currentIndex());
    else
        RowList::keyPressEvent(event);
}

// The first click has opened what was under the pointer; the second must not open what is there now.
void FileList::mouseDoubleClickEvent(QMouseEvent* event) {
    event->accept();
}

}  // namespace orvo
