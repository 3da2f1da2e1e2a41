// The component sheet: every shared control in every state, one picture for each palette and scale.
// Usage: orvo_gallery FOLDER. Runs offscreen, needs no display.

#include "appearance/Theme.h"
#include "appearance/controls/ActionCard.h"
#include "appearance/controls/AlertSheet.h"
#include "appearance/controls/CheckRow.h"
#include "appearance/controls/Divider.h"
#include "appearance/controls/ElidedLabel.h"
#include "appearance/controls/EmptyState.h"
#include "appearance/controls/Eyebrow.h"
#include "appearance/controls/HeaderPill.h"
#include "appearance/controls/HeroArt.h"
#include "appearance/controls/IconTile.h"
#include "appearance/controls/InfoCard.h"
#include "appearance/controls/ListRow.h"
#include "appearance/controls/NavRow.h"
#include "appearance/controls/Notice.h"
#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/OrvoMark.h"
#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/PageTitle.h"
#include "appearance/controls/SegmentedControl.h"
#include "appearance/controls/SessionTab.h"
#include "appearance/controls/Spinner.h"
#include "appearance/controls/StatusPill.h"
#include "appearance/controls/Switch.h"
#include "appearance/controls/TaskEditor.h"
#include "appearance/controls/TextField.h"
#include "appearance/controls/painting.h"
#include "appearance/controls/symbols.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFocusEvent>
#include <QGridLayout>
#include <QHoverEvent>
#include <QIcon>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QProgressBar>
#include <QScrollBar>
#include <QSlider>
#include <QTimer>
#include <QToolTip>
#include <QVBoxLayout>

#include <functional>

using namespace orvo;

namespace {

enum class State { Rest, Hover, Pressed, Focus, Disabled };
constexpr State allStates[] = {State::Rest, State::Hover, State::Pressed, State::Focus, State::Disabled};

QString nameOf(State state) {
    switch (state) {
        case State::Rest:
            return QStringLiteral("rest");
        case State::Hover:
            return QStringLiteral("hover");
        case State::Pressed:
            return QStringLiteral("pressed");
        case State::Focus:
            return QStringLiteral("focus");
        case State::Disabled:
            return QStringLiteral("disabled");
    }
    Q_UNREACHABLE();
}

void hover(QWidget* widget) {
    widget->setAttribute(Qt::WA_UnderMouse);
    QHoverEvent enter(QEvent::HoverEnter, QPointF(2, 2), QPointF(2, 2), QPointF(-1, -1));
    QApplication::sendEvent(widget, &enter);
}

/// States that live in the widget; focus is given while the picture of its cell is taken, see `Cell`.
void put(QWidget* widget, State state) {
    if (state == State::Hover || state == State::Pressed) hover(widget);
    if (state == State::Pressed) {
        if (auto* button = qobject_cast<QAbstractButton*>(widget)) button->setDown(true);
    }
    if (state == State::Disabled) widget->setEnabled(false);
    if (state == State::Focus) widget->setProperty("showFocused", true);
}

struct Sheet11 {
    QWidget* page;
    QVBoxLayout* left;
    QVBoxLayout* right;
};

QWidget* row(std::initializer_list<QWidget*> widgets, int spacing = 8) {
    auto* holder = new QWidget;
    auto* line = new QHBoxLayout(holder);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(spacing);
    for (QWidget* widget : widgets)
        line->addWidget(widget);
    line->addStretch();
    return holder;
}

void section(QVBoxLayout* column, const QString& title, std::initializer_list<QWidget*> content) {
    column->addWidget(new TextLabel(title, TypeRole::Name));
    column->addWidget(new Divider);
    for (QWidget* widget : content)
        column->addWidget(widget);
    column->addSpacing(20);
}

QWidget* stateGrid(const QList<QPair<QString, std::function<QWidget*()>>>& rows) {
    auto* holder = new QWidget;
    auto* grid = new QGridLayout(holder);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(10);
    int column = 1;
    for (const State state : allStates) {
        grid->addWidget(new TextLabel(nameOf(state), TypeRole::Caption, Ink::Muted), 0, column++);
    }
    int line = 1;
    for (const auto& [name, make] : rows) {
        grid->addWidget(new TextLabel(name, TypeRole::Caption, Ink::Muted), line, 0);
        column = 1;
        for (const State state : allStates) {
            QWidget* widget = make();
            put(widget, state);
            grid->addWidget(widget, line, column++);
        }
        ++line;
    }
    grid->setColumnStretch(column, 1);
    return holder;
}

QWidget* buttons() {
    using Kind = OrvoButton::Kind;
    const auto make = [](const char* title, const char* icon, Kind kind,
                         OrvoButton::Size size = OrvoButton::Size::Regular) {
        return [=]() -> QWidget* {
            return new OrvoButton(QString::fromLatin1(title), QString::fromLatin1(icon), kind, size);
        };
    };
    return stateGrid({
        {QStringLiteral("Primary"), make("Run task", "arrow.up", Kind::Primary)},
        {QStringLiteral("Outlined"), make("Export", "square.and.arrow.up", Kind::Outlined)},
        {QStringLiteral("Destructive"), make("Stop session", "", Kind::Destructive)},
        {QStringLiteral("Alert"), make("Stop session", "", Kind::DestructiveFilled)},
        {QStringLiteral("Plain, 28"),
         make("Configure", "slider.horizontal.3", Kind::Plain, OrvoButton::Size::Small)},
        {QStringLiteral("Compact"),
         make("Open", "arrow.up.right", Kind::Outlined, OrvoButton::Size::Compact)},
        {QStringLiteral("Icon"), make("Session menu", "ellipsis", Kind::Icon, OrvoButton::Size::Small)},
        {QStringLiteral("Icon, border"), make("New session", "plus", Kind::IconOutlined)},
    });
}

QWidget* fields() {
    return stateGrid({
        {QStringLiteral("Field"),
         []() -> QWidget* {
             auto* field = new TextField(QStringLiteral("My assistant"));
             field->setFixedWidth(110);
             return field;
         }},
        {QStringLiteral("Filled"),
         []() -> QWidget* {
             auto* field = new TextField;
             field->setText(QStringLiteral("Local model"));
             field->setFixedWidth(110);
             return field;
         }},
        {QStringLiteral("Error"),
         []() -> QWidget* {
             auto* field = new TextField;
             field->setText(QStringLiteral("claude \"{p}\""));
             field->setFont(monoFont(12));
             field->setInvalid(true);
             field->setFixedWidth(110);
             return field;
         }},
        {QStringLiteral("With icon"),
         []() -> QWidget* {
             auto* field = new TextField(QStringLiteral("Find a file…"));
             field->setIcon(QStringLiteral("magnifyingglass"));
             field->setFixedWidth(110);
             return field;
         }},
        {QStringLiteral("Picker"),
         []() -> QWidget* {
             auto* picker = new QComboBox;
             picker->addItem(QStringLiteral("Add offline search to the notes list"));
             picker->setFixedWidth(110);
             return picker;
         }},
        {QStringLiteral("Check box"),
         []() -> QWidget* {
             return new QCheckBox(QStringLiteral("off"));
         }},
        {QStringLiteral("Checked"),
         []() -> QWidget* {
             auto* box = new QCheckBox(QStringLiteral("on"));
             box->setChecked(true);
             return box;
         }},
        {QStringLiteral("Switch off"),
         []() -> QWidget* {
             return new Switch({});
         }},
        {QStringLiteral("Switch on"),
         []() -> QWidget* {
             auto* control = new Switch({});
             control->setChecked(true);
             return control;
         }},
        {QStringLiteral("Slider"),
         []() -> QWidget* {
             auto* slider = new QSlider(Qt::Horizontal);
             slider->setRange(10, 20);
             slider->setValue(14);
             slider->setFixedWidth(110);
             return slider;
         }},
    });
}

QWidget* rows() {
    return stateGrid({
        {QStringLiteral("Card"),
         []() -> QWidget* {
             auto* card = new ActionCard(QStringLiteral("hammer"), QStringLiteral("Build"));
             card->setFixedWidth(112);
             return card;
         }},
        {QStringLiteral("Entry"),
         []() -> QWidget* {
             auto* entry = new NavRow(QStringLiteral("square.grid.2x2"), QStringLiteral("Files & run"));
             entry->setFixedWidth(112);
             return entry;
         }},
        {QStringLiteral("Current"),
         []() -> QWidget* {
             auto* entry = new NavRow(QStringLiteral("square.grid.2x2"), QStringLiteral("Works"));
             entry->setCurrent(true);
             entry->setCount(4);
             entry->setFixedWidth(112);
             return entry;
         }},
        {QStringLiteral("Recent"),
         []() -> QWidget* {
             auto* entry = new ListRow(QStringLiteral("harbor-notes"));
             entry->setFixedWidth(112);
             return entry;
         }},
        {QStringLiteral("Tab"),
         []() -> QWidget* {
             auto* tab = new SessionTab(QStringLiteral("terminal"), {0x8F, 0xB4, 0xE6},
                                        QStringLiteral("A long session title"));
             tab->setFixedWidth(112);
             return tab;
         }},
        {QStringLiteral("Tab, on"),
         []() -> QWidget* {
             auto* tab = new SessionTab(QStringLiteral("asterisk"), {0xE8, 0xB0, 0x8F},
                                        QStringLiteral("Claude Code"));
             tab->setCurrent(true);
             tab->setFixedWidth(112);
             return tab;
         }},
        {QStringLiteral("Send to"),
         []() -> QWidget* {
             auto* entry =
                 new CheckRow(QStringLiteral("k.square"), {0xC3, 0xA6, 0xFF}, QStringLiteral("Kimi"));
             entry->setFixedWidth(112);
             return entry;
         }},
        {QStringLiteral("…chosen"),
         []() -> QWidget* {
             auto* entry =
                 new CheckRow(QStringLiteral("asterisk"), {0xE8, 0xB0, 0x8F}, QStringLiteral("Claude"));
             entry->setState(true, true);
             entry->setFixedWidth(112);
             return entry;
         }},
        {QStringLiteral("…not ready"),
         []() -> QWidget* {
             auto* entry =
                 new CheckRow(QStringLiteral("z.square"), {0x6F, 0xE0, 0xD8}, QStringLiteral("Z.ai"));
             entry->setState(false, true);
             entry->setFixedWidth(112);
             return entry;
         }},
    });
}

QWidget* types() {
    auto* holder = new QWidget;
    auto* column = new QVBoxLayout(holder);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(4);
    const QList<QPair<TypeRole, QString>> samples = {
        {TypeRole::Display, QStringLiteral("A new orbit")},
        {TypeRole::Title, QStringLiteral("Your best minds, together.")},
        {TypeRole::Section, QStringLiteral("Live sessions")},
        {TypeRole::CardTitle, QStringLiteral("Claude Code")},
        {TypeRole::Lead, QStringLiteral("Think it. Build it. Make it real.")},
        {TypeRole::Body, QStringLiteral("Think it. Build it. Make it real.")},
        {TypeRole::SmallControl, QStringLiteral("Separate copies")},
        {TypeRole::Caption, QStringLiteral("Or write your own below")},
    };
    for (const auto& [type, text] : samples)
        column->addWidget(new TextLabel(text, type));
    auto* mono = new TextLabel(QStringLiteral("$ ready to build => != 0"));
    mono->setFont(monoFont(12));
    column->addWidget(mono);
    auto* elided = new ElidedLabel(QStringLiteral("/home/mara/.local/share/tools/bin/a-very-long-name"),
                                   TypeRole::Caption, Ink::Muted);
    elided->setElideMode(Qt::ElideMiddle);
    elided->setFixedWidth(180);
    column->addWidget(elided);
    return holder;
}

QWidget* symbolTable() {
    auto* holder = new QWidget;
    auto* grid = new QGridLayout(holder);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(4);
    const QStringList names = QDir(QStringLiteral(":/symbols")).entryList();
    int index = 0;
    for (const QString& name : names) {
        grid->addWidget(new IconTile(name.chopped(4), index % 3 == 0   ? 36
                                                      : index % 3 == 1 ? 32
                                                                       : 28),
                        index / 12, index % 12);
        ++index;
    }
    return holder;
}

QWidget* brandRow() {
    auto* holder = row({}, 12);
    auto* line = static_cast<QHBoxLayout*>(holder->layout());
    for (const int size : {24, 32, 48, 96})
        line->insertWidget(line->count() - 1, new OrvoMark(size));
    const Rgb a{0xE8, 0xB0, 0x8F};
    const Rgb b{0xA8, 0xC8, 0xF5};
    const Rgb c{0xC3, 0xA6, 0xFF};
    const Rgb d{0x8F, 0xD8, 0xB5};
    line->insertWidget(line->count() - 1, new HeroArt({a, b, c, d}));
    return holder;
}

QWidget* applicationIcons() {
    auto* holder = row({}, 12);
    auto* line = static_cast<QHBoxLayout*>(holder->layout());
    for (const int size : {16, 24, 32, 64}) {
        auto* icon = new QLabel;
        icon->setPixmap(QIcon(QStringLiteral(":/brand/orvo.svg")).pixmap(size));
        line->insertWidget(line->count() - 1, icon);
    }
    return holder;
}

QWidget* menuPicture() {
    auto* menu = new QMenu;
    menu->addAction(QStringLiteral("Export output"));
    QAction* lit = menu->addAction(QStringLiteral("Copy output\tCtrl+C"));
    menu->addSeparator();
    menu->addAction(QStringLiteral("Stop session"))->setEnabled(false);
    QAction* checked = menu->addAction(QStringLiteral("Close pane"));
    checked->setCheckable(true);
    checked->setChecked(true);
    menu->ensurePolished();
    menu->setActiveAction(lit);
    menu->resize(menu->sizeHint());
    auto* picture = new QLabel;
    picture->setPixmap(menu->grab());
    delete menu;
    return picture;
}

QWidget* scrollAreas() {
    auto* holder = row({}, 12);
    auto* line = static_cast<QHBoxLayout*>(holder->layout());
    for (const State state : {State::Rest, State::Hover, State::Pressed}) {
        auto* editor = new QPlainTextEdit(QStringLiteral("one\n").repeated(60));
        editor->setFixedSize(120, 90);
        if (state != State::Rest) hover(editor->verticalScrollBar());
        if (state == State::Pressed) editor->verticalScrollBar()->setSliderDown(true);
        line->insertWidget(line->count() - 1, editor);
    }
    return holder;
}

QWidget* composer() {
    auto* card = new Card;
    card->setFrame(CardFrame::Active);
    auto* column = new QVBoxLayout(card);
    column->setContentsMargins(12, 12, 12, 12);
    auto* mode = new SegmentedControl({QStringLiteral("Shared folder"), QStringLiteral("Separate copies")});
    mode->setCurrentIndex(1);
    auto* layout = new SegmentedControl({QStringLiteral("Grid"), QStringLiteral("Focus")});
    put(layout->findChildren<QAbstractButton*>().first(), State::Focus);
    auto* off = new SegmentedControl({QStringLiteral("Grid"), QStringLiteral("Focus")});
    off->setEnabled(false);
    column->addWidget(row({mode, layout, off}));
    auto* editor = new TaskEditor(QStringLiteral("Task"), QStringLiteral("What would you like to build?"));
    column->addWidget(editor);
    column->addWidget(row({new TextLabel(QStringLiteral("2 selected"), TypeRole::Caption, Ink::Muted)}));
    return card;
}

Sheet11 makeSheet() {
    auto* page = new QWidget;
    page->setFixedWidth(1440);
    page->setAutoFillBackground(true);
    auto* halves = new QHBoxLayout(page);
    halves->setContentsMargins(32, 32, 32, 32);
    halves->setSpacing(48);
    auto* left = new QVBoxLayout;
    auto* right = new QVBoxLayout;
    for (QVBoxLayout* column : {left, right})
        column->setSpacing(10);
    halves->addLayout(left, 1);
    halves->addLayout(right, 1);
    return {page, left, right};
}

QWidget* makePage() {
    const Sheet11 sheet = makeSheet();
    section(sheet.left, QStringLiteral("Buttons"), {buttons()});
    section(sheet.left, QStringLiteral("Fields and settings"), {fields()});
    section(sheet.left, QStringLiteral("Cards and rows"), {rows()});
    auto* info = new InfoCard(
        QStringLiteral("lock.shield"), QStringLiteral("You stay in control"),
        QStringLiteral("Review each target, text and shortcut. Replan if the screen differs from "
                       "the plan. Nothing is sent before you say so, and nothing is kept."));
    section(sheet.left, QStringLiteral("Information"), {info, composer()});
    section(sheet.right, QStringLiteral("Type"), {types()});
    section(sheet.right, QStringLiteral("Brand"), {brandRow(), applicationIcons()});
    section(sheet.right, QStringLiteral("Symbols"), {symbolTable()});
    section(
        sheet.right, QStringLiteral("Pills, eyebrow, busy"),
        {row({new StatusPill(QStringLiteral("Running")), new StatusPill(QStringLiteral("Exit 0"), Ink::Muted),
              new StatusPill(QStringLiteral("Exit 2"), Ink::Danger),
              new HeaderPill({}, QStringLiteral("macOS native")),
              new HeaderPill(QStringLiteral("lock.shield"),
                             QStringLiteral("Your files. Your tools. Your accounts.")),
              new Spinner}),
         new Eyebrow(QStringLiteral("Connected intelligence"))});
    auto* progress = new QProgressBar;
    progress->setValue(40);
    progress->setTextVisible(false);
    section(sheet.right, QStringLiteral("Menu, scroll bars, progress"),
            {row({menuPicture(), scrollAreas()}, 24), progress});
    auto* empty = new EmptyState(QStringLiteral("clock.arrow.circlepath"),
                                 QStringLiteral("Your next session starts the story."),
                                 QStringLiteral("Completed sessions will appear here."));
    empty->setMinimumHeight(180);
    section(sheet.right, QStringLiteral("Empty state"), {empty});
    sheet.right->addWidget(new PageTitle(QStringLiteral("Make it yours"),
                                         QStringLiteral("A workspace in your colors."),
                                         QStringLiteral("Start with a palette, then tune the background.")));
    sheet.left->addStretch();
    sheet.right->addStretch();
    return sheet.page;
}

/// Gives each marked widget the focus in turn and pastes its picture into that of the page.
void paintFocused(QWidget* page, QPixmap* picture) {
    QPainter painter(picture);
    for (QWidget* widget : page->findChildren<QWidget*>()) {
        if (!widget->property("showFocused").toBool()) continue;
        widget->setFocus(Qt::TabFocusReason);
        QApplication::processEvents();
        QWidget* shown =
            qobject_cast<SegmentedControl*>(widget->parentWidget()) ? widget->parentWidget() : widget;
        const QPoint place = shown->mapTo(page, QPoint());
        painter.drawPixmap(place, page->grab(QRect(place, shown->size())));
        widget->clearFocus();
    }
}

QPixmap overlays(double) {
    QWidget window;
    window.resize(1440, 480);
    window.setAutoFillBackground(true);
    auto* bar = new QMenuBar(&window);
    bar->addMenu(QStringLiteral("Orvo AI"));
    bar->addMenu(QStringLiteral("File"));
    bar->resize(1440, 28);
    window.show();
    QToolTip::showText(window.mapToGlobal(QPoint(20, 60)),
                       QStringLiteral("Refresh installed tools and files"));
    QPixmap tip;
    for (QWidget* top : QApplication::topLevelWidgets()) {
        if (top->inherits("QTipLabel")) tip = top->grab();
    }
    AlertSheet alert(&window,
                     {QStringLiteral("Stop this session?"),
                      QStringLiteral("The assistant and processes launched in this terminal will stop."),
                      {QStringLiteral("Stop session"), QStringLiteral("Cancel")},
                      Alert::Default::LastButton});
    QPixmap picture;
    QTimer::singleShot(50, &alert, [&] {
        Notice notice(&window);
        notice.showText(QStringLiteral("Task sent to 2 assistants."));
        picture = window.grab();
        QPainter(&picture).drawPixmap(20, 60, tip);
        window.close();
        alert.dismiss();
    });
    alert.run();
    return picture;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        fputs("usage: orvo_gallery FOLDER [SCALE]\n", stderr);
        return 2;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QByteArray scale = argc > 2 ? QByteArray(argv[2]) : QByteArray("1");
    qputenv("QT_SCALE_FACTOR", scale);
    QApplication application(argc, argv);
    Theme theme(nullptr);
    OrvoStyle& style = applyTheme(theme);
    style.setMotion(Motion::Reduced);
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    folder.mkpath(QStringLiteral("."));
    for (const ThemePreset& preset : ThemePreset::all()) {
        theme.apply(preset);
        const std::unique_ptr<QWidget> page(makePage());
        page->resize(page->sizeHint());
        page->show();
        page->setAttribute(Qt::WA_KeyboardFocusChange);
        page->activateWindow();
        QApplication::processEvents();
        if (QWidget* focused = QApplication::focusWidget()) focused->clearFocus();
        QPixmap picture = page->grab();
        paintFocused(page.get(), &picture);
        const QString name = preset.id + u'@' + QString::fromLatin1(scale);
        picture.save(folder.filePath(QStringLiteral("sheet-%1.png").arg(name)));
        overlays(1).save(folder.filePath(QStringLiteral("overlay-%1.png").arg(name)));
    }
    return 0;
}
